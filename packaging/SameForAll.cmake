# SPDX-License-Identifier: GPL-3.0-or-later
# Run by cpack after it has packed: the archive names no modes of its parts, which would be those of the packer's umask.
foreach(package IN LISTS CPACK_PACKAGE_FILES)
  set(folder ${CPACK_TEMPORARY_DIRECTORY}/parts)
  file(REMOVE_RECURSE ${folder})
  file(MAKE_DIRECTORY ${folder})
  execute_process(COMMAND ar t ${package} OUTPUT_VARIABLE parts COMMAND_ERROR_IS_FATAL ANY)
  string(STRIP "${parts}" parts)
  string(REPLACE "\n" ";" parts "${parts}")
  execute_process(COMMAND ar x ${package} WORKING_DIRECTORY ${folder} COMMAND_ERROR_IS_FATAL ANY)
  file(REMOVE ${package})
  # The order is part of the format.
  execute_process(COMMAND ar rcD ${package} ${parts} WORKING_DIRECTORY ${folder} COMMAND_ERROR_IS_FATAL ANY)
endforeach()
