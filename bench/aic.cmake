# Apple Intermediate pictures per second against the FFmpeg libraries' two ProRes encoders.
add_executable(aic_speed ${CMAKE_CURRENT_LIST_DIR}/aic_speed.cpp)
target_link_libraries(aic_speed PRIVATE tavrix_tool_movencoder PkgConfig::LIBAV)
set_target_properties(aic_speed PROPERTIES AUTOMOC OFF)
