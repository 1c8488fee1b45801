# The screen recording bench: the test driver and the ffmpeg command line
# record the same screen side by side (record_bench.sh); pause_sync_bench
# measures the A/V offset after pause/resume cycles.
#   cmake --build . --target bench_recording
# bench/recording/CMakeLists.txt pulls this in with
#   include(${CMAKE_CURRENT_SOURCE_DIR}/record_bench.cmake OPTIONAL)
add_executable(pause_sync_bench ${CMAKE_CURRENT_LIST_DIR}/pause_sync_bench.cpp)
target_link_libraries(pause_sync_bench PRIVATE mirabend_recording_engine)
pkg_check_modules(BENCH_FFMPEG REQUIRED IMPORTED_TARGET libavformat libavcodec libavutil)
target_link_libraries(pause_sync_bench PRIVATE PkgConfig::BENCH_FFMPEG)
mirabend_target_defaults(pause_sync_bench)

if(TARGET record_screen_driver)
add_custom_target(bench_recording
  COMMAND ${CMAKE_CURRENT_LIST_DIR}/record_bench.sh $<TARGET_FILE:record_screen_driver>
          --pause-bench $<TARGET_FILE:pause_sync_bench>
  DEPENDS record_screen_driver pause_sync_bench
  USES_TERMINAL)
endif()
