# What the benchmarks of the console program share.
include_guard(GLOBAL)
add_library(tavrix_bench_batch STATIC ${CMAKE_CURRENT_LIST_DIR}/batchprocess.cpp ${CMAKE_CURRENT_LIST_DIR}/batchprocess.h)
target_link_libraries(tavrix_bench_batch PUBLIC tavrix_options Qt6::Core)
