# Dropping ten thousand files against a thousand.
add_executable(queueing ${CMAKE_CURRENT_LIST_DIR}/queueing.cpp)
target_link_libraries(queueing PRIVATE tavrix::app)
target_compile_definitions(queueing PRIVATE TAVRIX_BUILD_RESOURCES="${CMAKE_BINARY_DIR}/resources")
add_dependencies(queueing tavrix_resources)
