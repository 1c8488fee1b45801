# Test helpers. Every test executable is a GoogleTest binary whose cases are
# registered with CTest one by one, labelled and given a timeout, so a hung or
# crashed case never stalls the run.
find_package(GTest REQUIRED)
include(GoogleTest)

set(MIRABEND_TEST_TIMEOUT 120 CACHE STRING "Seconds one test case may take")
add_custom_target(mirabend_unit_tests)

# mirabend_add_gtest(NAME <exe> LABEL unit|widget|integration SOURCES ... LIBS ...
#                    [MAIN plain|qt|xvfb] [TIMEOUT s] [LOCK resource] [ENV VAR=VALUE ...])
#  LOCK: cases sharing a resource (a file in the program folder) never run at once.
#  MAIN plain: no Qt; qt: a QApplication on the offscreen platform;
#  xvfb: a private Xvfb display is started before the QApplication.
function(mirabend_add_gtest)
  cmake_parse_arguments(T "" "NAME;LABEL;MAIN;TIMEOUT;LOCK" "SOURCES;LIBS;ENV" ${ARGN})
  if(NOT T_MAIN)
    set(T_MAIN plain)
  endif()
  if(NOT T_TIMEOUT)
    set(T_TIMEOUT ${MIRABEND_TEST_TIMEOUT})
  endif()
  add_executable(${T_NAME} ${T_SOURCES})
  mirabend_target_defaults(${T_NAME})
  set_target_properties(${T_NAME} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
  if(T_MAIN STREQUAL "plain")
    target_link_libraries(${T_NAME} PRIVATE GTest::gtest GTest::gmock GTest::gtest_main ${T_LIBS})
  elseif(T_MAIN STREQUAL "qt")
    target_link_libraries(${T_NAME} PRIVATE mirabend_test_main_qt ${T_LIBS})
  elseif(T_MAIN STREQUAL "xvfb")
    target_link_libraries(${T_NAME} PRIVATE mirabend_test_main_xvfb ${T_LIBS})
  else()
    message(FATAL_ERROR "unknown MAIN ${T_MAIN}")
  endif()
  set(env QTEST_DISABLE_STACK_DUMP=1 MIRABEND_TEST_DATA=${CMAKE_SOURCE_DIR}/tests/data
      MIRABEND_SOURCE_DIR=${CMAKE_SOURCE_DIR} MIRABEND_BINARY_DIR=${CMAKE_BINARY_DIR}
      ASAN_OPTIONS=detect_leaks=0 ${T_ENV})
  if(T_LABEL STREQUAL "widget")
    list(APPEND env QT_QPA_PLATFORM=offscreen)
  endif()
  # The environment goes in front of the command (listing included): the
  # discovered tests' ENVIRONMENT property would keep only its first entry.
  set_target_properties(${T_NAME} PROPERTIES CROSSCOMPILING_EMULATOR "env;${env}")
  set(lock)
  if(T_LOCK)
    set(lock RESOURCE_LOCK ${T_LOCK})
  endif()
  gtest_discover_tests(${T_NAME}
    DISCOVERY_MODE PRE_TEST
    DISCOVERY_TIMEOUT 60
    PROPERTIES LABELS ${T_LABEL} TIMEOUT ${T_TIMEOUT} ${lock})
  if(T_LABEL STREQUAL "unit")
    add_dependencies(mirabend_unit_tests ${T_NAME})
  endif()
endfunction()
