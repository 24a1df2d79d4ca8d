# Warnings for the project's own targets; hosts that add the library as a subproject are
# not forced onto -Werror.
function(libstrokeset_warnings target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic)
  if(LIBSTROKESET_WERROR)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
  # Sanitizer instrumentation makes GCC's flow analysis report uninitialized values that are
  # not (inside the standard library's <regex> and <functional>, for one); the plain build
  # keeps the warning.
  if(LIBSTROKESET_SANITIZE AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    target_compile_options(${target} PRIVATE -Wno-maybe-uninitialized)
  endif()
endfunction()
