# The analysis of the console program against ffprobe and one thumbnail per clip.
include(${CMAKE_CURRENT_LIST_DIR}/batchprocess.cmake)
if(TAVRIX_CONSOLE)
  add_executable(analysis ${CMAKE_CURRENT_LIST_DIR}/analysis.cpp)
  target_link_libraries(analysis PRIVATE tavrix_bench_batch)
  add_dependencies(analysis tavrix-batch tavrix_resources tool_ffmpeg)
endif()
