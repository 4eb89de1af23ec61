# SPDX-License-Identifier: GPL-3.0-or-later
# What the package shows beside the programs: manual pages, change log, AppStream data, icons in their sizes. Included by
# Install.cmake.
execute_process(COMMAND ${CMAKE_COMMAND} -E env LC_ALL=C date -u -R -d ${TAVRIX_RELEASE_DATE}
  OUTPUT_VARIABLE TAVRIX_RELEASE_DATE_MAIL OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND date -u -d ${TAVRIX_RELEASE_DATE} +%s
  OUTPUT_VARIABLE release_seconds OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
file(WRITE ${packaging_folder}/packing.cmake "if(\"\$ENV{SOURCE_DATE_EPOCH}\" STREQUAL \"\")
  set(ENV{SOURCE_DATE_EPOCH} ${release_seconds})
endif()
")

# Without an address there is neither a home page nor a place that a software centre could take pictures from.
set(TAVRIX_METAINFO_WEB "")
if(TAVRIX_WEB_ADDRESS)
  string(CONFIGURE [[<url type="homepage">@TAVRIX_WEB_ADDRESS@</url>
  <screenshots>
    <screenshot type="default">
      <caption>A batch that is being converted</caption>
      <caption xml:lang="fr">Un lot en cours de conversion</caption>
      <image>@TAVRIX_WEB_ADDRESS@docs/images/main-encoding.png</image>
    </screenshot>
    <screenshot>
      <caption>The preferences</caption>
      <caption xml:lang="fr">Les préférences</caption>
      <image>@TAVRIX_WEB_ADDRESS@docs/images/preferences.png</image>
    </screenshot>
  </screenshots>]] TAVRIX_METAINFO_WEB @ONLY)
endif()

foreach(name tavrix.1 tavrix-batch.1 tavrix-inspect.1 tavrix.metainfo.xml changelog)
  configure_file(${CMAKE_CURRENT_LIST_DIR}/${name}.in ${packaging_folder}/${name} @ONLY)
endforeach()
set(made "")
foreach(name tavrix.1 tavrix-batch.1 tavrix-inspect.1 changelog)
  add_custom_command(OUTPUT ${packaging_folder}/${name}.gz
    COMMAND gzip -9 -n -k -f ${name}
    DEPENDS ${packaging_folder}/${name} WORKING_DIRECTORY ${packaging_folder} VERBATIM)
  list(APPEND made ${packaging_folder}/${name}.gz)
endforeach()

set(tavrix_icon_sizes 16 22 24 32 48 64 128 256 512)
if(TARGET tavrix)
  find_package(Qt6 6.4 REQUIRED COMPONENTS Svg)
  add_executable(tavrix_icons ${CMAKE_CURRENT_LIST_DIR}/icons/main.cpp)
  target_link_libraries(tavrix_icons PRIVATE tavrix_options Qt6::Svg)
  set_target_properties(tavrix_icons PROPERTIES AUTOMOC OFF RUNTIME_OUTPUT_DIRECTORY ${packaging_folder})
  set(icons "")
  foreach(size ${tavrix_icon_sizes})
    list(APPEND icons ${packaging_folder}/icons/${size}.png)
  endforeach()
  set(drawing ${CMAKE_SOURCE_DIR}/resources/images/tavrix.svg)
  add_custom_command(OUTPUT ${icons}
    COMMAND ${CMAKE_COMMAND} -E make_directory ${packaging_folder}/icons
    COMMAND tavrix_icons ${drawing} ${packaging_folder}/icons ${tavrix_icon_sizes}
    DEPENDS tavrix_icons ${drawing} VERBATIM)
  list(APPEND made ${icons})
endif()
add_custom_target(tavrix_documents ALL DEPENDS ${made})
