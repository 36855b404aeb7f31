# The API reference: `cmake --build --preset linux --target docs` runs Doxygen over the public
# headers and docs/mainpage.md into <build>/docs/html (index.html), and its warnings into
# <build>/docs/warnings.log; any warning fails the target (docs/Doxyfile.in). The install rules
# take the HTML when it has been built.

find_package(Doxygen QUIET)
if(NOT DOXYGEN_FOUND)
  add_custom_target(docs
    COMMAND ${CMAKE_COMMAND} -E echo "docs: Doxygen not found (scripts/deps.sh installs it)"
    COMMAND ${CMAKE_COMMAND} -E false)
  return()
endif()

set(ZUL_DOCS_OUTPUT ${CMAKE_BINARY_DIR}/docs)
set(ZUL_DOCS_WARNINGS ${ZUL_DOCS_OUTPUT}/warnings.log)
configure_file(${PROJECT_SOURCE_DIR}/docs/Doxyfile.in ${ZUL_DOCS_OUTPUT}/Doxyfile @ONLY)

# Runs every time (Doxygen takes a few seconds). Doxygen writes html.new, which becomes html only
# when the run has no warning, so that a failed run never leaves a reference that looks up to date.
add_custom_target(docs
  COMMAND ${CMAKE_COMMAND} -E remove_directory ${ZUL_DOCS_OUTPUT}/html
  COMMAND ${CMAKE_COMMAND} -E remove_directory ${ZUL_DOCS_OUTPUT}/html.new
  COMMAND ${DOXYGEN_EXECUTABLE} ${ZUL_DOCS_OUTPUT}/Doxyfile
  COMMAND ${CMAKE_COMMAND} -E rename ${ZUL_DOCS_OUTPUT}/html.new ${ZUL_DOCS_OUTPUT}/html
  WORKING_DIRECTORY ${PROJECT_SOURCE_DIR}
  COMMENT "API reference (Doxygen) in ${ZUL_DOCS_OUTPUT}/html, warnings in ${ZUL_DOCS_WARNINGS}"
  VERBATIM)

install(DIRECTORY ${ZUL_DOCS_OUTPUT}/html/ DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/doc/zulfnduti/html OPTIONAL)
