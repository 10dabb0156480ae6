# What `cmake --install` puts where: libraries, headers, the program, a CMake package with one
# component for each library, and a pkg-config file for each. `cmake --install --component NAME`
# installs a part: runtime (shared libraries and the programs that they start), development, tool (the
# program), window (the program with a window) or doc.

include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

# The programs that the library starts. Their folder has the minor version in its name, as the
# libraries have: two versions can be installed at the same time, and each starts its own programs.
set(QUARNER_WORKER_NAME quarner-${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR})
set(QUARNER_WORKER_DIR ${CMAKE_INSTALL_FULL_LIBEXECDIR}/${QUARNER_WORKER_NAME})
set(QUARNER_WORKER_FOLDER libexec/${QUARNER_WORKER_NAME}) # in the build tree, and in one that was moved
if(NOT IS_ABSOLUTE ${CMAKE_INSTALL_LIBEXECDIR})
  set(QUARNER_WORKER_FOLDER ${CMAKE_INSTALL_LIBEXECDIR}/${QUARNER_WORKER_NAME})
endif()
set(QUARNER_PACKAGE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/quarner)

# Installed programs and libraries find the libraries beside them, unless the system looks there
# anyway.
if(NOT CMAKE_INSTALL_PREFIX STREQUAL "/usr" AND NOT DEFINED CMAKE_INSTALL_RPATH)
  file(RELATIVE_PATH from_bin ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBDIR})
  set(CMAKE_INSTALL_RPATH "$ORIGIN;$ORIGIN/${from_bin}")
endif()

# The directory as a .pc file names it: below the prefix, or absolute if it was given so.
function(quarner_pkg_config_dir VARIABLE DIRECTORY)
  if(IS_ABSOLUTE ${DIRECTORY})
    set(${VARIABLE} ${DIRECTORY} PARENT_SCOPE)
  else()
    set(${VARIABLE} "\${prefix}/${DIRECTORY}" PARENT_SCOPE)
  endif()
endfunction()

# The libraries are found wherever the .pc file was put, also when the whole tree is moved. Only
# where the libraries' directory is absolute is the prefix fixed.
if(IS_ABSOLUTE ${CMAKE_INSTALL_LIBDIR})
  set(pc_prefix ${CMAKE_INSTALL_PREFIX})
else()
  file(RELATIVE_PATH pc_prefix /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
  string(REGEX REPLACE "/$" "" pc_prefix "\${pcfiledir}/${pc_prefix}")
endif()
quarner_pkg_config_dir(pc_libdir ${CMAKE_INSTALL_LIBDIR})
quarner_pkg_config_dir(pc_includedir ${CMAKE_INSTALL_INCLUDEDIR})

set(QUARNER_LIBRARY_DESCRIPTION_core "${PROJECT_DESCRIPTION}")
set(QUARNER_LIBRARY_DESCRIPTION_scripted "Scripted platform for the tests of a disc-burning host")
set(QUARNER_LIBRARY_DESCRIPTION_desktop "Desktop platform for the disc-burning framework quarner")

# Called by quarner_library. DEPENDS are libraries of this project, MODULES other pkg-config modules.
function(quarner_install_library NAME OUTPUT DEPENDS MODULES)
  install(TARGETS quarner_${NAME}_library EXPORT quarner-${NAME}-targets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime
            NAMELINK_COMPONENT development
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development
    INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
  install(EXPORT quarner-${NAME}-targets NAMESPACE quarner:: DESTINATION ${QUARNER_PACKAGE_DIR}
          COMPONENT development)

  set(pc_description "${QUARNER_LIBRARY_DESCRIPTION_${NAME}}")
  set(pc_requires ${MODULES})
  if(DEPENDS)
    list(PREPEND pc_requires "quarner = ${PROJECT_VERSION}")
  endif()
  list(JOIN pc_requires ", " pc_requires)
  configure_file(${PROJECT_SOURCE_DIR}/cmake/quarner.pc.in
                 ${PROJECT_BINARY_DIR}/${OUTPUT}.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/${OUTPUT}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig
          COMPONENT development)
endfunction()

# quarner_install_headers(FOLDER [EXCEPT file...])
# All headers below a folder, under include/quarner.
function(quarner_install_headers FOLDER)
  if(NOT QUARNER_INSTALL)
    return()
  endif()
  cmake_parse_arguments(ARG "" "" "EXCEPT" ${ARGN})
  set(exclusions)
  foreach(file IN LISTS ARG_EXCEPT)
    list(APPEND exclusions PATTERN ${file} EXCLUDE)
  endforeach()
  install(DIRECTORY ${FOLDER}/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/quarner
          COMPONENT development FILES_MATCHING PATTERN "*.h" ${exclusions})
endfunction()

function(quarner_install_package)
  get_property(modules GLOBAL PROPERTY QUARNER_MODULES_OF_STATIC_desktop)
  list(JOIN modules " " QUARNER_STATIC_DESKTOP_MODULES)
  configure_package_config_file(
    ${PROJECT_SOURCE_DIR}/cmake/quarner-config.cmake.in ${PROJECT_BINARY_DIR}/quarner-config.cmake
    INSTALL_DESTINATION ${QUARNER_PACKAGE_DIR})
  write_basic_package_version_file(${PROJECT_BINARY_DIR}/quarner-config-version.cmake
                                   COMPATIBILITY SameMinorVersion)
  install(FILES ${PROJECT_BINARY_DIR}/quarner-config.cmake
                ${PROJECT_BINARY_DIR}/quarner-config-version.cmake
          DESTINATION ${QUARNER_PACKAGE_DIR} COMPONENT development)
  install(FILES README.md CHANGELOG.md COPYING DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT doc)
  install(DIRECTORY LICENSES docs DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT doc
          PATTERN man EXCLUDE PATTERN site EXCLUDE)
  if(QUARNER_BUILD_DESKTOP)
    quarner_manual(libquarner.3 development)
  endif()
  if(TARGET quarner-gtk)
    quarner_manual(quarner-gtk.1 window)
  endif()
endfunction()
