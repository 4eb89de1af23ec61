# Where an installation puts things: programs in bin, the resource folder with its tools in lib/tavrix (where the
# programs look for it), and the Debian package of it all (cpack -G DEB).
include(GNUInstallDirs)

set(tavrix_resource_folder lib/tavrix)
set(packaging_folder ${CMAKE_BINARY_DIR}/packaging)
foreach(name tavrix.1 tavrix-batch.1 tavrix-inspect.1 tavrix.metainfo.xml)
  configure_file(${CMAKE_CURRENT_LIST_DIR}/${name}.in ${packaging_folder}/${name} @ONLY)
endforeach()
if(TARGET tavrix-batch)
  install(TARGETS tavrix-batch RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
  install(FILES ${packaging_folder}/tavrix-batch.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
endif()
if(TARGET tavrix-inspect)
  install(TARGETS tavrix-inspect RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
  install(FILES ${packaging_folder}/tavrix-inspect.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
endif()
install(TARGETS tool_ffmpeg tool_gettimestamps tool_movencoder tool_atompatch
  RUNTIME DESTINATION ${tavrix_resource_folder}/tools)
# The build tree's own resource folder, because parts of it are made by the build.
install(DIRECTORY ${CMAKE_BINARY_DIR}/resources/ DESTINATION ${tavrix_resource_folder}
  REGEX "/tools/(ffmpeg|gettimestamps|movencoder|atompatch)$" EXCLUDE
  REGEX "/(CMakeFiles|cmake_install\\.cmake|CTestTestfile\\.cmake|Makefile)$" EXCLUDE)

if(TARGET tavrix)
  install(TARGETS tavrix RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
  install(FILES ${packaging_folder}/tavrix.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
  install(FILES ${CMAKE_CURRENT_LIST_DIR}/tavrix.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
  install(FILES ${packaging_folder}/tavrix.metainfo.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
  install(FILES ${CMAKE_SOURCE_DIR}/resources/images/tavrix.svg
    DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)
endif()
install(FILES ${CMAKE_SOURCE_DIR}/README.md ${CMAKE_SOURCE_DIR}/docs/console.md ${CMAKE_SOURCE_DIR}/docs/inspect.md
  DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/tavrix)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME tavrix)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT "Tavrix developers <tavrix@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "converter of camera clips for home-video libraries")
set(CPACK_PACKAGE_DESCRIPTION "Brings clips of consumer cameras and recorders (AVCHD Lite, Motion-JPEG,
H.264, EyeTV) into a home-video library: analyses files and folders and
converts the camera clips among them, row by row, with the installed ffmpeg.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION video)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# What is started as a program, or loaded as a plug-in, is found by no look at the shared libraries.
set(CPACK_DEBIAN_PACKAGE_DEPENDS "ffmpeg, binutils, file, procps, bc, bash, mawk | gawk, xdg-utils")
if(TARGET tavrix)
  string(APPEND CPACK_DEBIAN_PACKAGE_DEPENDS ", qt6-qpa-plugins, libqt6svg6, qt6-translations-l10n")
endif()
include(CPack)
