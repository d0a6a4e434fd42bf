# The manual: Markdown for the help window, and the same pages as HTML, in one folder that every
# package installs. Without cmark-gfm the Markdown alone; a package must not be made so.
find_program(CMARK cmark-gfm)
find_package(Python3 COMPONENTS Interpreter QUIET)
set(VIREO2_MANUAL ${CMAKE_BINARY_DIR}/manual)
if(CMARK AND Python3_FOUND)
  file(GLOB_RECURSE MANUAL_SOURCES CONFIGURE_DEPENDS
    ${PROJECT_SOURCE_DIR}/docs/manual/*.md ${PROJECT_SOURCE_DIR}/docs/manual/*.png)
  add_custom_command(OUTPUT ${VIREO2_MANUAL}/index.html
    COMMAND ${Python3_EXECUTABLE} ${PROJECT_SOURCE_DIR}/docs/manual/make-html
      ${PROJECT_SOURCE_DIR}/docs/manual ${VIREO2_MANUAL}
    DEPENDS ${MANUAL_SOURCES} ${PROJECT_SOURCE_DIR}/docs/manual/make-html VERBATIM)
  add_custom_target(manual ALL DEPENDS ${VIREO2_MANUAL}/index.html)
  # To <destination>/manual.
  function(vireo2_install_manual destination)
    install(DIRECTORY ${VIREO2_MANUAL} DESTINATION ${destination})
  endfunction()
else()
  message(STATUS "cmark-gfm or Python is missing: the manual is installed without HTML")
  function(vireo2_install_manual destination)
    install(DIRECTORY ${PROJECT_SOURCE_DIR}/docs/manual DESTINATION ${destination}
      FILES_MATCHING PATTERN *.md PATTERN *.png)
  endfunction()
endif()
