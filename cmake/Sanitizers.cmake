# Instrumented builds. VYGIS_SANITIZE builds everything with AddressSanitizer and
# UndefinedBehaviorSanitizer for the test suite; VYGIS_BUILD_FUZZERS adds libFuzzer's
# coverage instrumentation on top and builds the fuzz targets (clang only).
option(VYGIS_SANITIZE "Build with AddressSanitizer and UndefinedBehaviorSanitizer" OFF)
option(VYGIS_BUILD_FUZZERS "Build the libFuzzer targets in fuzz/ (needs clang)" OFF)

if(VYGIS_BUILD_FUZZERS AND NOT CMAKE_CXX_COMPILER_ID MATCHES "Clang")
  message(FATAL_ERROR "VYGIS_BUILD_FUZZERS needs clang (CXX=clang++-14), not ${CMAKE_CXX_COMPILER_ID}")
endif()

if(VYGIS_SANITIZE OR VYGIS_BUILD_FUZZERS)
  if(MSVC)
    message(FATAL_ERROR "the sanitizer builds are made with GCC or clang")
  endif()
  # -O1 keeps the instrumented suite fast enough for CI, and line tables alone (no
  # variables) keep compiling and linking light while the reports keep their line
  # numbers; a report stops the run instead of scrolling by.
  if(CMAKE_CXX_COMPILER_ID MATCHES "Clang")
    set(VYGIS_LINE_TABLES -gline-tables-only)
  else()
    set(VYGIS_LINE_TABLES -g1)
  endif()
  set(VYGIS_SANITIZER_FLAGS -fsanitize=address,undefined -fno-sanitize-recover=all
      -fno-omit-frame-pointer -O1 ${VYGIS_LINE_TABLES})
  if(VYGIS_BUILD_FUZZERS)
    list(APPEND VYGIS_SANITIZER_FLAGS -fsanitize=fuzzer-no-link)
  endif()
  add_compile_options(${VYGIS_SANITIZER_FLAGS})
  add_link_options(-fsanitize=address,undefined)
endif()
