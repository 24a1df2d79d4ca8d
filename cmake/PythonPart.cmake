# Decides whether the Python module is built (LIBSTROKESET_BUILD_PYTHON_ENABLED): it needs the
# file formats part, pybind11, a Python with its headers, and NumPy importable by that Python.
# AUTO says in one line what is missing; ON stops there.
function(libstrokeset_python_missing why)
  if(LIBSTROKESET_BUILD_PYTHON STREQUAL "ON")
    message(FATAL_ERROR "LibStrokeset: the Python module needs ${why}")
  endif()
  message(STATUS "LibStrokeset: the Python module is off: it needs ${why}")
  set(LIBSTROKESET_BUILD_PYTHON_ENABLED OFF PARENT_SCOPE)
endfunction()

string(TOUPPER "${LIBSTROKESET_BUILD_PYTHON}" libstrokeset_python_choice)
set(LIBSTROKESET_BUILD_PYTHON_ENABLED OFF)
if(NOT libstrokeset_python_choice STREQUAL "OFF")
  set(LIBSTROKESET_BUILD_PYTHON_ENABLED ON)
  if(LIBSTROKESET_BUILD_FUZZERS OR
     (LIBSTROKESET_SANITIZE AND NOT CMAKE_CXX_COMPILER_ID STREQUAL "GNU"))
    # Its tests preload GCC's sanitizer runtime into the interpreter; fuzzers need no module.
    message(STATUS "LibStrokeset: the Python module is off in fuzzing builds and in sanitized "
                   "builds with compilers other than g++")
    set(LIBSTROKESET_BUILD_PYTHON_ENABLED OFF)
  elseif(NOT TARGET LibStrokesetFormats)
    libstrokeset_python_missing("the file formats part")
  else()
    find_package(Python 3.7 COMPONENTS Interpreter Development.Module QUIET)
    if(NOT Python_FOUND)
      libstrokeset_python_missing("Python with its headers (apt-get install python3-dev)")
    else()
      find_package(pybind11 CONFIG QUIET)
      execute_process(COMMAND ${Python_EXECUTABLE} -c "import numpy"
                      RESULT_VARIABLE libstrokeset_numpy_missing OUTPUT_QUIET ERROR_QUIET)
      if(NOT pybind11_FOUND)
        libstrokeset_python_missing("pybind11 (apt-get install pybind11-dev)")
      elseif(libstrokeset_numpy_missing)
        libstrokeset_python_missing("NumPy for ${Python_EXECUTABLE} (apt-get install "
                                    "python3-numpy, or choose another Python with "
                                    "-DPython_EXECUTABLE=...)")
      endif()
    endif()
  endif()
endif()
