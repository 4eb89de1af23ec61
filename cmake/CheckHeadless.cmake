# SPDX-License-Identifier: GPL-3.0-or-later
# cmake -DROOT=FOLDER -DBUILD=FOLDER -DSETTINGS="..." -P CheckHeadless.cmake: the program without its faces can be
# configured and built. Building all of it a second time would double the time of the tests. So the commands that would
# compile it are compared with those that have compiled BUILD, and what these have made is linked without the faces.
cmake_minimum_required(VERSION 3.25)

set(headless ${BUILD}/headless)
file(REMOVE_RECURSE ${headless})
execute_process(
  COMMAND ${CMAKE_COMMAND} -S ${ROOT} -B ${headless} -G Ninja ${SETTINGS}
    -DTAVRIX_GUI=OFF -DTAVRIX_CONSOLE=OFF -DTAVRIX_TESTS=OFF
  OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)

# One line for each compiled file, free of the build's own folder.
function(read_commands folder result)
  file(STRINGS ${folder}/compile_commands.json lines REGEX "\"command\"")
  string(REPLACE "${folder}/" "BUILD/" lines "${lines}")
  set(${result} "${lines}" PARENT_SCOPE)
endfunction()
read_commands(${headless} commands)
read_commands(${BUILD} known)
list(LENGTH commands count)
if(count LESS 100)
  message(FATAL_ERROR "the build without faces compiles ${count} files only")
endif()
foreach(command IN LISTS commands)
  if(command MATCHES "/src/(gui|console)/")
    message(FATAL_ERROR "a file of a face is compiled without the faces: ${command}")
  endif()
  if(NOT command IN_LIST known)
    message(FATAL_ERROR "compiled otherwise than with the faces: ${command}")
  endif()
endforeach()
execute_process(COMMAND ${CMAKE_COMMAND} --build ${BUILD} --target tavrix_headless COMMAND_ERROR_IS_FATAL ANY)
message(STATUS "${count} files are compiled alike with and without the faces")
