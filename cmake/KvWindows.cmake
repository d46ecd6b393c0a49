# What builds for Windows alone need.

# kv_speak_utf8(PROGRAM): has the system give and take UTF-8 where a program has bytes for texts: its
# command line, its environment, its messages.
enable_language(RC)
function(kv_speak_utf8 program)
  target_sources(${program} PRIVATE "${CMAKE_SOURCE_DIR}/cmake/windows/utf8.rc")
endfunction()

# GoogleTest has no package for MinGW-w64; Debian has its sources.
if(KV_TESTS)
  set(INSTALL_GTEST OFF)
  add_subdirectory(/usr/src/googletest "${CMAKE_BINARY_DIR}/googletest" EXCLUDE_FROM_ALL)
endif()
