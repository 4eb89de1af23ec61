# SPDX-License-Identifier: GPL-3.0-or-later
# Where an installation puts things: programs in bin, the resource folder with its tools in lib/tavrix (where the
# programs look for it), and the Debian package of it all (cpack -G DEB).
include(GNUInstallDirs)

set(TAVRIX_MAINTAINER "Tavrix maintainers <maintainers@tavrix.example>" CACHE STRING
  "Who answers for the package")
set(TAVRIX_WEB_ADDRESS "" CACHE STRING "Home page, with the pictures of docs/images below it; empty: there is none yet")

set(tavrix_resource_folder lib/tavrix)
set(packaging_folder ${CMAKE_BINARY_DIR}/packaging)
set(documents ${CMAKE_INSTALL_DATADIR}/doc/tavrix)
include(${CMAKE_CURRENT_LIST_DIR}/Documents.cmake)

set(programs "")
foreach(program tavrix tavrix-batch tavrix-inspect)
  if(TARGET ${program})
    list(APPEND programs ${program})
    install(TARGETS ${program} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
    install(FILES ${packaging_folder}/${program}.1.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
  endif()
endforeach()
foreach(program tavrix-batch tavrix-inspect)
  if(TARGET ${program})
    set(completions ${CMAKE_CURRENT_LIST_DIR}/completions)
    install(FILES ${completions}/${program}.bash RENAME ${program}
      DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
    install(FILES ${completions}/_${program} DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions)
    install(FILES ${completions}/${program}.fish DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d)
  endif()
endforeach()
install(TARGETS tool_ffmpeg tool_gettimestamps tool_movencoder tool_atompatch
  RUNTIME DESTINATION ${tavrix_resource_folder}/tools)
install(TARGETS tool_ffmpeg_media LIBRARY DESTINATION ${tavrix_resource_folder}/tools)
# The build tree's own resource folder, because parts of it are made by the build.
install(DIRECTORY ${CMAKE_BINARY_DIR}/resources/ DESTINATION ${tavrix_resource_folder}
  REGEX "/tools/(ffmpeg|ffmpeg-media\\.so|gettimestamps|movencoder|atompatch)$" EXCLUDE
  REGEX "/(CMakeFiles|cmake_install\\.cmake|CTestTestfile\\.cmake|Makefile)$" EXCLUDE)
install(FILES ${CMAKE_CURRENT_LIST_DIR}/copyright ${packaging_folder}/changelog.gz ${CMAKE_SOURCE_DIR}/README.md
  ${CMAKE_SOURCE_DIR}/docs/console.md ${CMAKE_SOURCE_DIR}/docs/inspect.md ${CMAKE_SOURCE_DIR}/docs/window.md
  DESTINATION ${documents})

if(TARGET tavrix)
  install(FILES ${CMAKE_CURRENT_LIST_DIR}/tavrix.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
  install(FILES ${packaging_folder}/tavrix.metainfo.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
  set(icons ${CMAKE_INSTALL_DATADIR}/icons/hicolor)
  install(FILES ${CMAKE_SOURCE_DIR}/resources/images/tavrix.svg DESTINATION ${icons}/scalable/apps)
  foreach(size ${tavrix_icon_sizes})
    install(FILES ${packaging_folder}/icons/${size}.png RENAME tavrix.png DESTINATION ${icons}/${size}x${size}/apps)
  endforeach()
endif()

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME tavrix)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT ${TAVRIX_MAINTAINER})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "converter of camera clips for home-video libraries")
set(CPACK_PACKAGE_DESCRIPTION "Brings clips of consumer cameras and recorders (AVCHD Lite, Motion-JPEG,
H.264, EyeTV) into a home-video library: analyses files and folders and
converts the camera clips among them, row by row, with the installed ffmpeg.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
# Two packings of the same build are the same to the bit, whoever packs and when.
set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_CURRENT_LIST_DIR}/OpenFolders.cmake)
set(CPACK_POST_BUILD_SCRIPTS ${CMAKE_CURRENT_LIST_DIR}/SameForAll.cmake)
set(CPACK_PROJECT_CONFIG_FILE ${packaging_folder}/packing.cmake)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION video)
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE "${TAVRIX_WEB_ADDRESS}")
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# What is started as a program, or loaded as a plug-in, is found by no look at the shared libraries.
set(CPACK_DEBIAN_PACKAGE_DEPENDS "ffmpeg, binutils, file, procps, bc, mawk | gawk, xdg-utils")
if(TARGET tavrix)
  string(APPEND CPACK_DEBIAN_PACKAGE_DEPENDS ", libqt6svg6, qt6-translations-l10n")
  set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "qt6-wayland")
endif()
include(CPack)
