# A batch of the console program against a plain loop over the ffmpeg commands that it runs.
include(${CMAKE_CURRENT_LIST_DIR}/batchprocess.cmake)
if(TAVRIX_CONSOLE)
  add_executable(batch-overhead ${CMAKE_CURRENT_LIST_DIR}/batch-overhead.cpp)
  target_link_libraries(batch-overhead PRIVATE tavrix_bench_batch tavrix::encode tavrix_tool_ffmpeg)
  add_dependencies(batch-overhead tavrix-batch tavrix_resources tool_ffmpeg)
endif()
