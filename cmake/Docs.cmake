# The API reference: `cmake --build <dir> --target docs` writes <dir>/docs/html/index.html
# from the public headers, when Doxygen is installed. Every public member is documented, so
# any warning (an undocumented member among them) fails the target.
find_package(Doxygen QUIET)
if(NOT DOXYGEN_FOUND)
  message(STATUS "LibStrokeset: the docs target is off: Doxygen was not found "
                 "(apt-get install doxygen)")
  return()
endif()
set(DOXYGEN_PROJECT_NAME LibStrokeset)
set(DOXYGEN_PROJECT_BRIEF "${PROJECT_DESCRIPTION}")
set(DOXYGEN_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/docs)
set(DOXYGEN_GENERATE_LATEX NO)
set(DOXYGEN_EXTRACT_ALL NO)
set(DOXYGEN_WARN_IF_UNDOCUMENTED YES)
set(DOXYGEN_WARN_NO_PARAMDOC NO)
set(DOXYGEN_WARN_AS_ERROR FAIL_ON_WARNINGS)
set(DOXYGEN_QUIET YES)
set(DOXYGEN_DISTRIBUTE_GROUP_DOC YES)
set(DOXYGEN_MACRO_EXPANSION YES)
set(DOXYGEN_PREDEFINED "LIBSTROKESET_API=")
set(DOXYGEN_STRIP_FROM_INC_PATH ${PROJECT_SOURCE_DIR}/include)
doxygen_add_docs(docs ${PROJECT_SOURCE_DIR}/include/LibStrokeset
                 COMMENT "API reference in ${PROJECT_BINARY_DIR}/docs/html")
