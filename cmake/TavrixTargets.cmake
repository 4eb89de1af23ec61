# SPDX-License-Identifier: GPL-3.0-or-later
# Language level, warnings and strict Qt text rules, shared by every target of our own. A warning is an error in the
# developers' presets only (CMAKE_COMPILE_WARNING_AS_ERROR): the next compiler may know one more.
add_library(tavrix_options INTERFACE)
target_compile_features(tavrix_options INTERFACE cxx_std_20)
target_compile_options(tavrix_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -fno-strict-aliasing)
target_compile_definitions(tavrix_options INTERFACE
  QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_URL_CAST_FROM_STRING QT_NO_FOREACH
  QT_NO_KEYWORDS __STDC_CONSTANT_MACROS __STDC_FORMAT_MACROS)
target_include_directories(tavrix_options INTERFACE ${CMAKE_SOURCE_DIR}/src)
if(TAVRIX_SANITIZE)
  target_compile_options(tavrix_options INTERFACE
    -fsanitize=${TAVRIX_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=undefined)
  target_link_options(tavrix_options INTERFACE -fsanitize=${TAVRIX_SANITIZE})
endif()

# The headers that nearly every file of a target reads are read once for it: half of the time of a build. Developers'
# builds only, so that the others notice a file that forgets an include.
set(tavrix_common_headers <QByteArray> <QDir> <QFile> <QHash> <QList> <QObject> <QString> <QStringList> <QVariantMap>
  <algorithm> <functional> <memory> <optional> <string> <vector>)
function(tavrix_precompile target)
  if(TAVRIX_PRECOMPILE)
    target_precompile_headers(${target} PRIVATE ${tavrix_common_headers} ${ARGN})
  endif()
endfunction()

# One static library per source folder: src/<folder>/*.cpp becomes tavrix::<folder>, with "_" for each "/".
function(tavrix_library folder)
  file(GLOB sources CONFIGURE_DEPENDS
    ${CMAKE_SOURCE_DIR}/src/${folder}/*.cpp ${CMAKE_SOURCE_DIR}/src/${folder}/*.h)
  list(FILTER sources EXCLUDE REGEX "/main\\.cpp$")
  string(REPLACE "/" "_" name ${folder})
  add_library(tavrix_${name} STATIC ${sources})
  add_library(tavrix::${name} ALIAS tavrix_${name})
  target_link_libraries(tavrix_${name} PUBLIC tavrix_options ${ARGN})
  set_target_properties(tavrix_${name} PROPERTIES LINKER_LANGUAGE CXX)
  tavrix_floor(src/${folder} ${ARGN})
endfunction()

# tavrix_wings(FOLDER WING...): the libraries of src/<folder>/<wing> under one name, for those who stand on all of them.
function(tavrix_wings folder)
  set(wings ${ARGN})
  list(TRANSFORM wings PREPEND tavrix::${folder}_)
  add_library(tavrix_${folder} INTERFACE)
  add_library(tavrix::${folder} ALIAS tavrix_${folder})
  target_link_libraries(tavrix_${folder} INTERFACE ${wings})
  tavrix_floor(src/${folder} ${wings})
endfunction()

# A tool executable of the resource folder, free of Qt: src/tools/<folder>/*.cpp on the named libraries.
function(tavrix_tool name)
  cmake_parse_arguments(TOOL "" "FOLDER" "LINK" ${ARGN})
  if(NOT TOOL_FOLDER)
    set(TOOL_FOLDER ${name})
  endif()
  file(GLOB sources CONFIGURE_DEPENDS
    ${CMAKE_SOURCE_DIR}/src/tools/${TOOL_FOLDER}/*.cpp ${CMAKE_SOURCE_DIR}/src/tools/${TOOL_FOLDER}/*.h)
  set(library_sources ${sources})
  list(FILTER library_sources EXCLUDE REGEX "/main\\.cpp$")
  if(library_sources)
    add_library(tavrix_tool_${TOOL_FOLDER} STATIC ${library_sources})
    target_link_libraries(tavrix_tool_${TOOL_FOLDER} PUBLIC tavrix_options ${TOOL_LINK})
    set_target_properties(tavrix_tool_${TOOL_FOLDER} PROPERTIES AUTOMOC OFF LINKER_LANGUAGE CXX)
  else()
    add_library(tavrix_tool_${TOOL_FOLDER} INTERFACE)
    target_link_libraries(tavrix_tool_${TOOL_FOLDER} INTERFACE tavrix_options ${TOOL_LINK})
  endif()
  add_executable(tool_${TOOL_FOLDER} ${CMAKE_SOURCE_DIR}/src/tools/${TOOL_FOLDER}/main.cpp)
  target_link_libraries(tool_${TOOL_FOLDER} PRIVATE tavrix_tool_${TOOL_FOLDER})
  set_target_properties(tool_${TOOL_FOLDER} PROPERTIES AUTOMOC OFF
    OUTPUT_NAME ${name} RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/resources/tools)
  tavrix_floor(src/tools/${TOOL_FOLDER} ${TOOL_LINK})
endfunction()

# A GoogleTest program of tests/<folder>, run by ctest in a home and temporary folder of its own. Its label says when it
# is worth running: `fast` after every change, `media` for what starts the media tools, `window` for the faces on a
# screen. NEEDS names the targets that it starts.
function(tavrix_test folder)
  cmake_parse_arguments(TEST "" "LABEL" "LINK;NEEDS" ${ARGN})
  if(NOT TEST_LABEL OR TEST_UNPARSED_ARGUMENTS)
    message(FATAL_ERROR "tavrix_test(${folder} LABEL fast|media|window LINK library... [NEEDS target...])")
  endif()
  file(GLOB sources CONFIGURE_DEPENDS
    ${CMAKE_SOURCE_DIR}/tests/${folder}/*.cpp ${CMAKE_SOURCE_DIR}/tests/${folder}/*.h)
  add_executable(test_${folder} ${sources})
  target_link_libraries(test_${folder} PRIVATE tavrix_test_support ${TEST_LINK})
  tavrix_precompile(test_${folder} <gmock/gmock.h> <gtest/gtest.h>)
  add_dependencies(test_${folder} tavrix_resources ${TEST_NEEDS})
  add_test(NAME ${folder} COMMAND test_${folder})
  set_tests_properties(${folder} PROPERTIES TIMEOUT 900 LABELS ${TEST_LABEL})
  tavrix_floor(tests/${folder} tavrix_test_support ${TEST_LINK})
endfunction()
