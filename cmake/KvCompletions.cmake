# Where a shell looks for the completions of zsh differs: Debian's packages have a folder of their own.
set(KV_ZSH_COMPLETIONS "${CMAKE_INSTALL_DATADIR}/zsh/site-functions" CACHE STRING
  "Folder of the completions for zsh, below the prefix")

# kv_completions(PROGRAM): has the program print what bash, zsh and fish read, and installs that. A
# program for another system cannot be asked.
function(kv_completions program)
  if(CMAKE_CROSSCOMPILING)
    return()
  endif()
  set(folder "${CMAKE_BINARY_DIR}/completions")
  set(files "")
  foreach(shell bash zsh fish)
    set(file "${folder}/${program}.${shell}")
    add_custom_command(OUTPUT "${file}"
      COMMAND "${CMAKE_COMMAND}" -E make_directory "${folder}"
      COMMAND ${program} --completion ${shell} > "${file}"
      DEPENDS ${program} VERBATIM)
    list(APPEND files "${file}")
  endforeach()
  add_custom_target(${program}_completions ALL DEPENDS ${files})
  install(FILES "${folder}/${program}.bash" RENAME ${program}
    DESTINATION "${CMAKE_INSTALL_DATADIR}/bash-completion/completions")
  install(FILES "${folder}/${program}.zsh" RENAME _${program} DESTINATION "${KV_ZSH_COMPLETIONS}")
  install(FILES "${folder}/${program}.fish"
    DESTINATION "${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d")
endfunction()
