# The API reference: `cmake --build --preset linux --target docs` runs Doxygen over the public
# headers and docs/mainpage.md into <build>/docs/html (index.html), and its warnings into
# <build>/docs/warnings.log. The install rules take the HTML when it has been built.
option(ZUL_DOCS_WERROR "API reference: extract documented entities only and fail on any Doxygen warning" OFF)

find_package(Doxygen QUIET)
if(NOT DOXYGEN_FOUND)
  add_custom_target(docs
    COMMAND ${CMAKE_COMMAND} -E echo "docs: Doxygen not found (scripts/deps.sh installs it)"
    COMMAND ${CMAKE_COMMAND} -E false)
  return()
endif()

set(ZUL_DOCS_OUTPUT ${CMAKE_BINARY_DIR}/docs)
set(ZUL_DOCS_WARNINGS ${ZUL_DOCS_OUTPUT}/warnings.log)
if(ZUL_DOCS_WERROR)
  set(ZUL_DOCS_EXTRACT_ALL NO)
  set(ZUL_DOCS_WARN_AS_ERROR FAIL_ON_WARNINGS)
else()
  set(ZUL_DOCS_EXTRACT_ALL YES)
  set(ZUL_DOCS_WARN_AS_ERROR NO)
endif()
configure_file(${PROJECT_SOURCE_DIR}/docs/Doxyfile.in ${ZUL_DOCS_OUTPUT}/Doxyfile @ONLY)

# Runs every time (Doxygen takes a few seconds), so that a failed run never leaves a reference
# that looks up to date.
add_custom_target(docs
  COMMAND ${CMAKE_COMMAND} -E remove_directory ${ZUL_DOCS_OUTPUT}/html
  COMMAND ${DOXYGEN_EXECUTABLE} ${ZUL_DOCS_OUTPUT}/Doxyfile
  WORKING_DIRECTORY ${PROJECT_SOURCE_DIR}
  COMMENT "API reference (Doxygen) in ${ZUL_DOCS_OUTPUT}/html, warnings in ${ZUL_DOCS_WARNINGS}"
  VERBATIM)

install(DIRECTORY ${ZUL_DOCS_OUTPUT}/html/ DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/doc/zulfnduti/html OPTIONAL)
