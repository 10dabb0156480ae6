# Where ccache is used, it is told what it needs to know to work with precompiled headers, and not to
# run the preprocessor before every compilation: Ninja's list of dependencies says the same.
if(CMAKE_CXX_COMPILER_LAUNCHER MATCHES "ccache$")
  set(CMAKE_CXX_COMPILER_LAUNCHER env CCACHE_DEPEND=1
      CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime
      ${CMAKE_CXX_COMPILER_LAUNCHER})
endif()
