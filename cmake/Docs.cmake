# The API pages, from the headers that are installed. Everything public has a comment, or this fails.
find_package(Doxygen 1.9.4 REQUIRED)
find_package(Python3 REQUIRED COMPONENTS Interpreter)

set(docs ${PROJECT_SOURCE_DIR}/docs)

set(DOXYGEN_PROJECT_NUMBER ${PROJECT_VERSION})
set(DOXYGEN_USE_MDFILE_AS_MAINPAGE ${docs}/api/mainpage.md)
set(DOXYGEN_STRIP_FROM_PATH ${PROJECT_SOURCE_DIR}/infrastructure ${PROJECT_SOURCE_DIR})
set(DOXYGEN_STRIP_FROM_INC_PATH ${PROJECT_SOURCE_DIR}/infrastructure)
set(DOXYGEN_FILTER_PATTERNS "\"*.h=${Python3_EXECUTABLE} ${docs}/api/describe-records.py\"")
set(DOXYGEN_VERBATIM_VARS DOXYGEN_FILTER_PATTERNS)
set(DOXYGEN_EXAMPLE_PATH ${PROJECT_SOURCE_DIR}/examples)
set(DOXYGEN_PREDEFINED
  DATABASESERVICE_EXPORT= DATABASESERVICE_NO_EXPORT= CLIENTSERVICES_EXPORT= CLIENTSERVICES_NO_EXPORT=)
set(DOXYGEN_MACRO_EXPANSION YES)
set(DOXYGEN_EXPAND_ONLY_PREDEF YES)
set(DOXYGEN_JAVADOC_AUTOBRIEF YES)
# A comment at the head of a group of declarations goes for all of them.
set(DOXYGEN_DISTRIBUTE_GROUP_DOC YES)
set(DOXYGEN_HAVE_DOT NO)
set(DOXYGEN_QUIET YES)
set(DOXYGEN_WARN_IF_UNDOCUMENTED YES)
set(DOXYGEN_WARN_AS_ERROR FAIL_ON_WARNINGS)

doxygen_add_docs(docs ${clientservices_headers} ${databaseservice_headers} ${docs}/api/mainpage.md
  COMMENT "The API pages: ${PROJECT_BINARY_DIR}/html/index.html")
