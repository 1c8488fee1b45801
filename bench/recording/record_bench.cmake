# The screen recording bench: the test driver and the ffmpeg command line
# record the same screen side by side (record_bench.sh); pause_sync_bench
# measures the A/V offset after pause/resume cycles and screen_content puts
# slides, a moving pointer, full-screen motion or nothing new on the screen.
#   cmake --build . --target bench_recording          (the table of ratios)
#   cmake --build . --target bench_recording_profile  (CPU per stage)
# bench/recording/CMakeLists.txt pulls this in with
#   include(${CMAKE_CURRENT_SOURCE_DIR}/record_bench.cmake OPTIONAL)
add_executable(pause_sync_bench ${CMAKE_CURRENT_LIST_DIR}/pause_sync_bench.cpp)
target_link_libraries(pause_sync_bench PRIVATE mirabend_recording_engine)
pkg_check_modules(BENCH_FFMPEG REQUIRED IMPORTED_TARGET libavformat libavcodec libavutil)
target_link_libraries(pause_sync_bench PRIVATE PkgConfig::BENCH_FFMPEG)
mirabend_target_defaults(pause_sync_bench)

pkg_check_modules(BENCH_XCB REQUIRED IMPORTED_TARGET xcb)
add_executable(screen_content ${CMAKE_CURRENT_LIST_DIR}/screen_content.cpp)
target_include_directories(screen_content PRIVATE ${PROJECT_SOURCE_DIR})
target_link_libraries(screen_content PRIVATE PkgConfig::BENCH_XCB)
mirabend_target_defaults(screen_content)

if(TARGET record_screen_driver)
add_custom_target(bench_recording
  COMMAND ${CMAKE_CURRENT_LIST_DIR}/record_bench.sh $<TARGET_FILE:record_screen_driver>
          $<TARGET_FILE:pause_sync_bench> $<TARGET_FILE:screen_content>
  DEPENDS record_screen_driver pause_sync_bench screen_content
  USES_TERMINAL)
# Where our CPU goes per frame and stage, x11grab against damage tracking.
add_custom_target(bench_recording_profile
  COMMAND ${CMAKE_CURRENT_LIST_DIR}/record_bench.sh $<TARGET_FILE:record_screen_driver>
          $<TARGET_FILE:pause_sync_bench> $<TARGET_FILE:screen_content> --profile --seconds 8
  DEPENDS record_screen_driver pause_sync_bench screen_content
  USES_TERMINAL)
endif()
