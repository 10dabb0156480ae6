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

# The sources of tests are compiled without optimisation in every build: that takes half of the time,
# and what they test is compiled as it is installed.
add_library(quarner_test_options INTERFACE)
target_compile_options(quarner_test_options INTERFACE -O0)
find_program(QUARNER_LLD ld.lld)
mark_as_advanced(QUARNER_LLD)
if(QUARNER_LLD AND NOT CMAKE_INTERPROCEDURAL_OPTIMIZATION)
  target_link_options(quarner_test_options INTERFACE -fuse-ld=lld)
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

include(${CMAKE_CURRENT_LIST_DIR}/QuarnerPrecompile.cmake)

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
  quarner_precompile_headers(quarner_${NAME})
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
  target_link_libraries(${NAME} PRIVATE quarner_options quarner_test_options ${objects} ${ARG_DEPENDS}
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
