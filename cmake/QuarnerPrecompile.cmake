# Precompiled headers. They take a quarter off the time that the sources and the tests need to be
# compiled. Only headers of the standard library and of GoogleTest are in them, so that no change of
# a file of this tree compiles them again. Builds without them (the default, and the preset clang)
# show whether a file includes what it uses.

set(QUARNER_STANDARD_HEADERS
  <algorithm> <array> <atomic> <chrono> <condition_variable> <filesystem> <fstream> <functional>
  <map> <memory> <mutex> <optional> <sstream> <string> <string_view> <system_error> <thread>
  <utility> <variant> <vector>)

# quarner_use_headers_of(NAME TARGET): the target NAME uses the precompiled headers of TARGET.
function(quarner_use_headers_of NAME TARGET)
  target_precompile_headers(${NAME} REUSE_FROM ${TARGET})
  # Headers that were compiled with other flags cost time, nothing else.
  set_target_properties(${NAME} PROPERTIES PCH_WARN_INVALID OFF)
  quarner_expect_precompiled_headers(${NAME})
endfunction()

# For a target that uses precompiled headers.
function(quarner_expect_precompiled_headers NAME)
  # GCC 12 reports these in std::string when its header was precompiled, and not otherwise.
  if(CMAKE_CXX_COMPILER_ID STREQUAL GNU)
    target_compile_options(${NAME} PRIVATE -Wno-array-bounds -Wno-restrict -Wno-stringop-overflow
                           -Wno-stringop-overread)
  endif()
endfunction()

# For the sources of the libraries and of the program, which are position-independent code.
function(quarner_precompile_headers NAME)
  if(NOT QUARNER_PRECOMPILE_HEADERS)
    return()
  endif()
  if(NOT TARGET quarner_headers)
    file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/headers.cpp CONTENT "\n")
    add_library(quarner_headers OBJECT EXCLUDE_FROM_ALL ${PROJECT_BINARY_DIR}/headers.cpp)
    target_link_libraries(quarner_headers PRIVATE quarner_options Threads::Threads)
    target_precompile_headers(quarner_headers PRIVATE ${QUARNER_STANDARD_HEADERS})
  endif()
  quarner_use_headers_of(${NAME} quarner_headers)
endfunction()

# For the sources of the tests, which are those of programs.
function(quarner_precompile_test_headers NAME)
  if(NOT QUARNER_PRECOMPILE_HEADERS)
    return()
  endif()
  if(NOT TARGET quarner_test_headers)
    file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/test_headers.cpp CONTENT "int main() {}\n")
    add_executable(quarner_test_headers EXCLUDE_FROM_ALL ${PROJECT_BINARY_DIR}/test_headers.cpp)
    target_link_libraries(quarner_test_headers PRIVATE quarner_options quarner_test_options
                          Threads::Threads GTest::gmock GTest::gtest)
    target_precompile_headers(quarner_test_headers PRIVATE
                              <gmock/gmock.h> <gtest/gtest.h> ${QUARNER_STANDARD_HEADERS})
  endif()
  quarner_use_headers_of(${NAME} quarner_test_headers)
endfunction()
