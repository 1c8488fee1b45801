# The overlay benchmark. bench/recording/CMakeLists.txt pulls this in with
#   include(${CMAKE_CURRENT_SOURCE_DIR}/overlay_bench.cmake OPTIONAL)
if(TARGET mirabend_recording_overlay)
  add_executable(overlay_bench ${CMAKE_CURRENT_LIST_DIR}/overlay_bench.cpp)
  mirabend_target_defaults(overlay_bench)
  target_link_libraries(overlay_bench PRIVATE mirabend_recording_overlay)
  set_target_properties(overlay_bench PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bench)
endif()
