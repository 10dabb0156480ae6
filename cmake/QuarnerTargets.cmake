# The building blocks of the tree. Every folder of sources is compiled once, as an object library
# (quarner_NAME); the shared libraries that are installed and the static twins that the tests link
# are made from the same objects. The tests need the twins because the shared libraries hide
# everything that is not exported.

add_library(quarner_options INTERFACE)
# -pthread everywhere: some libraries ask for it, and a precompiled header serves one set of flags.
target_compile_options(quarner_options INTERFACE -pthread
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wnon-virtual-dtor -Wold-style-cast
  $<$<BOOL:${QUARNER_WARNINGS_ARE_ERRORS}>:-Werror>)
target_include_directories(quarner_options INTERFACE ${PROJECT_SOURCE_DIR})
if(QUARNER_SANITIZE)
  target_compile_options(quarner_options INTERFACE
    -fsanitize=${QUARNER_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(quarner_options INTERFACE -fsanitize=${QUARNER_SANITIZE})
endif()

# What the runtime libraries of the sanitizers are told in every test. The suppressions, each with
# its reason, are in cmake/*.supp.
set(QUARNER_TEST_ENVIRONMENT
  ASAN_OPTIONS=detect_leaks=1:strict_string_checks=1:detect_stack_use_after_return=1
  UBSAN_OPTIONS=print_stacktrace=1)
function(quarner_sanitizer_options VARIABLE OPTIONS FILE)
  if(EXISTS ${PROJECT_SOURCE_DIR}/cmake/${FILE})
    string(APPEND OPTIONS ":suppressions=${PROJECT_SOURCE_DIR}/cmake/${FILE}")
  endif()
  set(QUARNER_TEST_ENVIRONMENT ${QUARNER_TEST_ENVIRONMENT} ${VARIABLE}=${OPTIONS} PARENT_SCOPE)
endfunction()
quarner_sanitizer_options(TSAN_OPTIONS halt_on_error=1:second_deadlock_stack=1:atexit_sleep_ms=100
                         tsan.supp)
quarner_sanitizer_options(LSAN_OPTIONS print_suppressions=0 lsan.supp)

# quarner_objects(NAME [DEPENDS target...] [FOLDERS folder...])
# All .cpp files of the folders (this one by default) as the object library quarner_NAME.
function(quarner_objects NAME)
  cmake_parse_arguments(ARG "" "" "DEPENDS;FOLDERS" ${ARGN})
  if(NOT ARG_FOLDERS)
    set(ARG_FOLDERS .)
  endif()
  set(sources)
  foreach(folder IN LISTS ARG_FOLDERS)
    file(GLOB found CONFIGURE_DEPENDS ${folder}/*.cpp)
    list(APPEND sources ${found})
  endforeach()
  add_library(quarner_${NAME} OBJECT ${sources})
  target_link_libraries(quarner_${NAME} PUBLIC quarner_options Threads::Threads ${ARG_DEPENDS})
endfunction()

# What every test includes is parsed once, which takes a third off the time that a clean build of the
# tests needs. ccache does not work on files with such headers, and saves more where it is used.
function(quarner_precompile_test_headers NAME)
  if(CMAKE_CXX_COMPILER_LAUNCHER MATCHES ccache)
    return()
  endif()
  if(NOT TARGET quarner_test_headers)
    # A program, because programs are compiled with other flags than libraries. Never linked.
    file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/test_headers.cpp CONTENT "int main() {}\n")
    add_executable(quarner_test_headers EXCLUDE_FROM_ALL ${PROJECT_BINARY_DIR}/test_headers.cpp)
    target_link_libraries(quarner_test_headers PRIVATE
                          quarner_options Threads::Threads GTest::gmock GTest::gtest)
    target_precompile_headers(quarner_test_headers PRIVATE
      <gmock/gmock.h> <gtest/gtest.h> <algorithm> <chrono> <filesystem> <functional> <map> <memory>
      <mutex> <optional> <string> <thread> <vector>)
  endif()
  target_precompile_headers(${NAME} REUSE_FROM quarner_test_headers)
  # One that does not fit costs time, nothing else.
  set_target_properties(${NAME} PROPERTIES PCH_WARN_INVALID OFF)
  # GCC 12 reports these in std::string when its header was precompiled, and not otherwise.
  target_compile_options(${NAME} PRIVATE -Wno-array-bounds -Wno-restrict -Wno-stringop-overflow
                         -Wno-stringop-overread)
endfunction()

# quarner_library(NAME OUTPUT file OBJECTS name... [HEADERS folder] [DEPENDS target...])
# The installed shared library quarner::NAME, made from the objects quarner_name. HEADERS is the
# folder that a host finds its headers in; DEPENDS are the libraries that those headers use.
# Nothing but what the sources export from namespace quarner is visible in it.
function(quarner_library NAME)
  cmake_parse_arguments(ARG "" "OUTPUT;HEADERS" "OBJECTS;DEPENDS" ${ARGN})
  set(target quarner_${NAME}_shared)
  add_library(${target} SHARED)
  add_library(quarner::${NAME} ALIAS ${target})
  list(TRANSFORM ARG_OBJECTS PREPEND quarner_ OUTPUT_VARIABLE objects)
  target_link_libraries(${target} PRIVATE ${objects} PUBLIC ${ARG_DEPENDS})
  target_compile_features(${target} INTERFACE cxx_std_20)
  target_include_directories(${target} INTERFACE $<BUILD_INTERFACE:${ARG_HEADERS}>)
  set(exports ${PROJECT_SOURCE_DIR}/cmake/exports.map)
  target_link_options(${target} PRIVATE LINKER:--version-script=${exports})
  if(NOT QUARNER_SANITIZE) # the sanitizers' functions come with the program
    target_link_options(${target} PRIVATE LINKER:-z,defs)
  endif()
  set_target_properties(${target} PROPERTIES
    OUTPUT_NAME ${ARG_OUTPUT} EXPORT_NAME ${NAME} LINK_DEPENDS ${exports}
    VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR})
  quarner_install_library(${NAME} ${ARG_OUTPUT} "${ARG_DEPENDS}")
endfunction()

# quarner_test(NAME SOURCES file... OBJECTS name... [DEPENDS target...] [LABELS label...])
# A GoogleTest program whose tests ctest lists one by one, linked from the objects quarner_name.
function(quarner_test NAME)
  cmake_parse_arguments(ARG "" "" "SOURCES;OBJECTS;DEPENDS;LABELS" ${ARGN})
  add_executable(${NAME} ${ARG_SOURCES})
  list(TRANSFORM ARG_OBJECTS PREPEND quarner_ OUTPUT_VARIABLE objects)
  target_link_libraries(${NAME} PRIVATE quarner_options ${objects} ${ARG_DEPENDS}
                        GTest::gmock GTest::gtest_main)
  quarner_precompile_test_headers(${NAME})
  # By the names that a suite gives its parameters, not by their bytes.
  gtest_discover_tests(${NAME} NO_PRETTY_VALUES DISCOVERY_TIMEOUT 60 PROPERTIES TIMEOUT 120)
  # Properties that are lists do not get through gtest_discover_tests: set once the tests are known.
  file(CONFIGURE OUTPUT ${NAME}_properties.cmake @ONLY CONTENT [[
foreach(test IN LISTS @NAME@_TESTS)
  set_tests_properties("${test}" PROPERTIES
    ENVIRONMENT "@QUARNER_TEST_ENVIRONMENT@" LABELS "@ARG_LABELS@")
endforeach()
]])
  set_property(DIRECTORY APPEND PROPERTY
               TEST_INCLUDE_FILES ${CMAKE_CURRENT_BINARY_DIR}/${NAME}_properties.cmake)
endfunction()
