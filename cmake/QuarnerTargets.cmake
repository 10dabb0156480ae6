# The building blocks of the tree. Every folder of sources is compiled once, as an object library
# (quarner_NAME); the libraries that are installed and the programs of the tests are made from the same
# objects. The tests need the objects because the shared libraries hide what is not exported.

add_library(quarner_options INTERFACE)
# -pthread everywhere: some libraries ask for it, and a precompiled header serves one set of flags.
target_compile_options(quarner_options INTERFACE -pthread
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wnon-virtual-dtor -Wold-style-cast
  $<$<BOOL:${QUARNER_WARNINGS_ARE_ERRORS}>:-Werror>)
# libburn and libisofs have offsets of 64 bits in their interfaces, and files are larger than 2 GB.
if(CMAKE_SIZEOF_VOID_P EQUAL 4)
  target_compile_definitions(quarner_options INTERFACE _FILE_OFFSET_BITS=64)
endif()
# GCC 12 reports -Wrestrict falsely in std::string when it optimises with -O3.
if(CMAKE_CXX_COMPILER_ID STREQUAL GNU AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13
   AND NOT QUARNER_PRECOMPILE_HEADERS)
  target_compile_options(quarner_options INTERFACE -Wno-restrict)
endif()
target_include_directories(quarner_options INTERFACE ${PROJECT_SOURCE_DIR})
if(QUARNER_SANITIZE)
  target_compile_options(quarner_options INTERFACE
    -fsanitize=${QUARNER_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(quarner_options INTERFACE -fsanitize=${QUARNER_SANITIZE})
  # GCC 12 reports it in std::regex and std::function under a sanitizer, and not otherwise.
  if(CMAKE_CXX_COMPILER_ID STREQUAL GNU)
    target_compile_options(quarner_options INTERFACE -Wno-maybe-uninitialized)
  endif()
endif()

# The sources of tests are compiled without optimisation in every build: that takes half of the time,
# and what they test is compiled as it is installed.
add_library(quarner_test_options INTERFACE)
target_compile_options(quarner_test_options INTERFACE -O0)
# UndefinedBehaviorSanitizer watches what is tested; in the tests it takes a third of their compile time.
if(QUARNER_SANITIZE MATCHES undefined)
  target_compile_options(quarner_test_options INTERFACE -fno-sanitize=undefined)
endif()
# A name of one source may then shadow that of another.
if(QUARNER_UNITY_TESTS)
  target_compile_options(quarner_test_options INTERFACE -Wno-shadow)
endif()
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

# quarner_library(NAME OUTPUT file OBJECTS name... [HEADERS folder] [DEPENDS target...]
#                 [PACKAGES name module...] [STATIC])
# The installed library quarner::NAME, made from the objects quarner_name: shared, unless STATIC is
# given or BUILD_SHARED_LIBS is off. HEADERS is the folder that a host finds its headers in; DEPENDS
# are the libraries that those headers use. PACKAGES are the pkg-config modules of other libraries
# that the objects use, found as PkgConfig::name: whoever links the static library links them too.
function(quarner_library NAME)
  cmake_parse_arguments(ARG "STATIC" "OUTPUT;HEADERS" "OBJECTS;DEPENDS;PACKAGES" ${ARGN})
  set(target quarner_${NAME}_library)
  list(TRANSFORM ARG_OBJECTS PREPEND quarner_ OUTPUT_VARIABLE objects)
  if(ARG_STATIC OR NOT BUILD_SHARED_LIBS)
    quarner_static_library(${target} OBJECTS ${objects} PACKAGES ${ARG_PACKAGES})
    set(modules ${ARG_PACKAGES})
    list(POP_FRONT modules)
    set_property(GLOBAL PROPERTY QUARNER_MODULES_OF_STATIC_${NAME} ${modules})
  else()
    quarner_shared_library(${target} OBJECTS ${objects})
    set(modules)
  endif()
  add_library(quarner::${NAME} ALIAS ${target})
  target_link_libraries(${target} PUBLIC ${ARG_DEPENDS})
  target_compile_features(${target} INTERFACE cxx_std_20)
  target_include_directories(${target} INTERFACE $<BUILD_INTERFACE:${ARG_HEADERS}>)
  set_target_properties(${target} PROPERTIES
    OUTPUT_NAME ${ARG_OUTPUT} EXPORT_NAME ${NAME} LINKER_LANGUAGE CXX)
  if(QUARNER_INSTALL)
    quarner_install_library(${NAME} ${ARG_OUTPUT} "${ARG_DEPENDS}" "${modules}")
  endif()
endfunction()

# Nothing but what the sources export from namespace quarner is visible in a shared library. Until
# version 1.0 any minor version may change the interface, so it is part of the library's name.
function(quarner_shared_library TARGET)
  cmake_parse_arguments(ARG "" "" "OBJECTS" ${ARGN})
  add_library(${TARGET} SHARED)
  target_link_libraries(${TARGET} PRIVATE ${ARG_OBJECTS})
  set(exports ${PROJECT_SOURCE_DIR}/cmake/exports.map)
  target_link_options(${TARGET} PRIVATE LINKER:--version-script=${exports})
  if(NOT QUARNER_SANITIZE) # the sanitizers' functions come with the program
    target_link_options(${TARGET} PRIVATE LINKER:-z,defs)
  endif()
  set_target_properties(${TARGET} PROPERTIES LINK_DEPENDS ${exports} VERSION ${PROJECT_VERSION}
    SOVERSION ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR})
endfunction()

function(quarner_static_library TARGET)
  cmake_parse_arguments(ARG "" "" "OBJECTS;PACKAGES" ${ARGN})
  add_library(${TARGET} STATIC)
  foreach(object IN LISTS ARG_OBJECTS)
    # Not linked: the export would then name targets that are not installed.
    target_sources(${TARGET} PRIVATE $<TARGET_OBJECTS:${object}>)
  endforeach()
  target_link_libraries(${TARGET} INTERFACE $<LINK_ONLY:Threads::Threads>)
  if(ARG_PACKAGES)
    list(GET ARG_PACKAGES 0 name)
    target_link_libraries(${TARGET} INTERFACE $<LINK_ONLY:PkgConfig::${name}>)
  endif()
  if(QUARNER_SANITIZE)
    target_link_options(${TARGET} INTERFACE -fsanitize=${QUARNER_SANITIZE})
  endif()
endfunction()

# quarner_test(NAME SOURCES file... OBJECTS name... [DEPENDS target...] [LABELS label...])
# A GoogleTest program whose tests ctest lists one by one, linked from the objects quarner_name.
function(quarner_test NAME)
  cmake_parse_arguments(ARG "" "" "SOURCES;OBJECTS;DEPENDS;LABELS" ${ARGN})
  add_executable(${NAME} ${ARG_SOURCES})
  list(TRANSFORM ARG_OBJECTS PREPEND quarner_ OUTPUT_VARIABLE objects)
  # Eight sources at once take a third of the time, because they use the same templates.
  set_target_properties(${NAME} PROPERTIES UNITY_BUILD ${QUARNER_UNITY_TESTS}
                        UNITY_BUILD_BATCH_SIZE 8)
  target_link_libraries(${NAME} PRIVATE quarner_options quarner_test_options ${objects} ${ARG_DEPENDS}
                        GTest::gmock GTest::gtest_main)
  quarner_precompile_test_headers(${NAME})
  # The programs that the library starts.
  if("worker" IN_LIST ARG_OBJECTS)
    add_dependencies(${NAME} quarner-drive quarner-joliet)
  endif()
  # By the names that a suite gives its parameters, not by their bytes.
  gtest_discover_tests(${NAME} NO_PRETTY_VALUES DISCOVERY_TIMEOUT 60 PROPERTIES TIMEOUT 120)
  # Properties that are lists do not get through gtest_discover_tests: set once the tests are known.
  file(CONFIGURE OUTPUT ${NAME}_properties.cmake @ONLY CONTENT [[
foreach(test IN LISTS @NAME@_TESTS)
  set_tests_properties("${test}" PROPERTIES
    ENVIRONMENT "@QUARNER_TEST_ENVIRONMENT@" LABELS "@ARG_LABELS@"
    # Of the programs that a test starts, whose status it does not see.
    FAIL_REGULAR_EXPRESSION "detected memory leaks|WARNING: ThreadSanitizer|runtime error: ")
endforeach()
]])
  set_property(DIRECTORY APPEND PROPERTY
               TEST_INCLUDE_FILES ${CMAKE_CURRENT_BINARY_DIR}/${NAME}_properties.cmake)
endfunction()
