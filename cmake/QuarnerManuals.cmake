# Manual pages. Their sources are in the format mdoc, which every man program shows, so that no other
# program is needed to build them.

# quarner_manual(PAGE COMPONENT): docs/man/PAGE.in, with the version and the directories of this
# build, is installed with a component. PAGE ends in its section, as in quarner.1.
function(quarner_manual PAGE COMPONENT)
  if(NOT QUARNER_INSTALL)
    return()
  endif()
  set(page ${PROJECT_BINARY_DIR}/man/${PAGE})
  configure_file(${PROJECT_SOURCE_DIR}/docs/man/${PAGE}.in ${page} @ONLY)
  string(REGEX REPLACE ".*\\." "" section ${PAGE})
  install(FILES ${page} DESTINATION ${CMAKE_INSTALL_MANDIR}/man${section} COMPONENT ${COMPONENT})
  set_property(GLOBAL APPEND PROPERTY QUARNER_MANUALS ${page})
endfunction()
