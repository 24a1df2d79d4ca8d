# Warnings for the project's own targets; hosts that add the library as a subproject are
# not forced onto -Werror.
function(libstrokeset_warnings target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic)
  if(LIBSTROKESET_WERROR)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
endfunction()
