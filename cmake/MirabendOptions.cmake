# Build options and the compiler flags every Mirabend target shares.
option(MIRABEND_BUILD_TESTS "Build the test suite" ON)
option(MIRABEND_BUILD_BENCH "Build the benchmarks" OFF)
option(MIRABEND_WARNINGS_AS_ERRORS "Treat compiler warnings as errors" ON)
option(MIRABEND_SANITIZE "Build with AddressSanitizer and UndefinedBehaviorSanitizer" OFF)

find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM)
  set(CMAKE_C_COMPILER_LAUNCHER ${CCACHE_PROGRAM})
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CCACHE_PROGRAM})
endif()

if(MIRABEND_SANITIZE)
  add_compile_options(-fsanitize=address,undefined -fno-omit-frame-pointer -fno-sanitize-recover=undefined)
  add_link_options(-fsanitize=address,undefined)
endif()

# Applies the project's warning set to one of our own targets (never to
# generated or third-party code).
function(mirabend_target_defaults target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow=local
    -Wnon-virtual-dtor -Woverloaded-virtual -Wcast-align)
  if(MIRABEND_WARNINGS_AS_ERRORS)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
  target_compile_definitions(${target} PRIVATE QT_NO_KEYWORDS QT_USE_QSTRINGBUILDER
    QT_NO_CAST_FROM_BYTEARRAY QT_STRICT_ITERATORS)
endfunction()
