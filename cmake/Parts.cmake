# libstrokeset_part(<switch> <what> <Debian package> <find_package arguments>...)
#
# Decides whether an optional part of the project is built and sets <switch>_ENABLED. The
# switch is AUTO (build it when its dependency is found, otherwise say in one status line
# what is missing and how to get it), ON (the dependency is required) or OFF.
function(libstrokeset_part switch what package)
  string(TOUPPER "${${switch}}" choice)
  set(enabled OFF)
  if(choice STREQUAL "AUTO" OR ${switch})
    list(GET ARGN 0 name)
    find_package(${ARGN} QUIET)
    if(${name}_FOUND)
      set(enabled ON)
    elseif(choice STREQUAL "AUTO")
      message(STATUS "LibStrokeset: ${what} are off: ${name} was not found "
                     "(apt-get install ${package})")
    else()
      message(FATAL_ERROR "LibStrokeset: ${what} need ${name}: apt-get install ${package}")
    endif()
  endif()
  set(${switch}_ENABLED ${enabled} PARENT_SCOPE)
endfunction()
