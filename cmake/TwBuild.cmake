# Shared build rules: warnings as errors for our own code, sanitizer flags,
# and the install tree that mirrors the product's real layout.

set(TW_INSTALL_PRODUCT_DIR "MediaCore/Qervane Tarnwick")
set(TW_PLUGIN_BUNDLE_DIR "${TW_INSTALL_PRODUCT_DIR}/Tarnwick_Importer.bundle/Contents/Linux")

if(TW_SANITIZE STREQUAL "address")
  set(TW_SANITIZER_FLAGS -fsanitize=address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer
      -fsanitize-ignorelist=${CMAKE_CURRENT_LIST_DIR}/ubsan-ignorelist.txt)
elseif(TW_SANITIZE STREQUAL "thread")
  set(TW_SANITIZER_FLAGS -fsanitize=thread -fno-omit-frame-pointer)
elseif(NOT TW_SANITIZE STREQUAL "")
  message(FATAL_ERROR "TW_SANITIZE must be empty, 'address' or 'thread'")
endif()
if(TW_SANITIZER_FLAGS)
  add_compile_options(${TW_SANITIZER_FLAGS})
  add_link_options(${TW_SANITIZER_FLAGS})
endif()

# Applied to every target built from our own sources (not to third-party code).
function(tw_strict_warnings target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Werror -Wno-unused-parameter)
endfunction()

# Collects the sources of a folder tree; CONFIGURE_DEPENDS so that a new file
# joins the build without touching any CMakeLists.txt.
function(tw_glob_sources out_var)
  file(GLOB_RECURSE _files CONFIGURE_DEPENDS ${ARGN})
  list(SORT _files)
  set(${out_var} ${_files} PARENT_SCOPE)
endfunction()

# A GoogleTest executable. Every test runs in its own process (ctest runs each
# discovered test separately), so process-wide state starts fresh each time.
# Test suites that exercise threads carry "Concurrency" in their suite name:
# the ThreadSanitizer stage selects them by that word.
function(tw_add_test_suite name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LIBS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE tw_test_support GTest::gtest GTest::gmock GTest::gtest_main ${ARG_LIBS})
  tw_strict_warnings(${name})
  gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 60
                       PROPERTIES TIMEOUT 300)
endfunction()

# A libFuzzer target; built only with TW_BUILD_FUZZ under clang.
function(tw_add_fuzz_target name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LIBS" ${ARGN})
  if(NOT TW_BUILD_FUZZ)
    return()
  endif()
  add_executable(${name} ${ARG_SOURCES})
  target_compile_options(${name} PRIVATE -fsanitize=fuzzer)
  target_link_options(${name} PRIVATE -fsanitize=fuzzer)
  target_link_libraries(${name} PRIVATE ${ARG_LIBS})
  tw_strict_warnings(${name})
  set_property(GLOBAL APPEND PROPERTY TW_FUZZ_TARGETS ${name})
endfunction()

# A Google Benchmark program (never run as a test).
function(tw_add_benchmark name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LIBS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE benchmark::benchmark ${ARG_LIBS})
  tw_strict_warnings(${name})
endfunction()

# The build tree stages the product exactly as it installs, so tests and the
# host find the plug-in and the decoder library by the product's own path rules.
set(TW_STAGE_DIR "${CMAKE_BINARY_DIR}/stage")
set(TW_STAGE_PRODUCT_DIR "${TW_STAGE_DIR}/${TW_INSTALL_PRODUCT_DIR}")
set(TW_STAGE_PLUGIN_DIR "${TW_STAGE_DIR}/${TW_PLUGIN_BUNDLE_DIR}")
