# What `cmake --install` and the packages hold: the same, by one set of rules.
include(cmake/manual.cmake)
if(WIN32)
  install(TARGETS vireo2-console DESTINATION .)
  if(TARGET vireo2-target)
    install(TARGETS vireo2-target DESTINATION .)
  endif()
  if(VIREO2_DESKTOP)
    install(TARGETS vireo2 DESTINATION .)
    install(DIRECTORY $ENV{VIREO2_QT_WINDOWS}/licences DESTINATION .)
  endif()
  # Where the programs look for it: beside them.
  vireo2_install_manual(.)
  install(FILES LICENSE DESTINATION . RENAME LICENSE.txt)
  # The compiler's own parts are linked in too.
  install(FILES /usr/share/doc/gcc-mingw-w64-base/copyright DESTINATION licences RENAME gcc.txt)
  install(FILES /usr/share/doc/mingw-w64-common/copyright DESTINATION licences RENAME mingw-w64.txt)
  install(DIRECTORY examples DESTINATION .)
else()
  include(GNUInstallDirs)
  install(TARGETS vireo2-console vireo2-target DESTINATION ${CMAKE_INSTALL_BINDIR})
  set(programs vireo2-console vireo2-target)
  if(VIREO2_DESKTOP)
    list(APPEND programs vireo2)
    install(TARGETS vireo2 DESTINATION ${CMAKE_INSTALL_BINDIR})
    install(FILES packaging/linux/vireo2.desktop DESTINATION share/applications)
    install(FILES packaging/linux/vireo2.metainfo.xml DESTINATION share/metainfo)
    install(FILES packaging/icons/vireo2.svg DESTINATION share/icons/hicolor/scalable/apps)
    install(FILES packaging/icons/vireo2.png DESTINATION share/icons/hicolor/128x128/apps)
  endif()
  vireo2_install_manual(share/vireo2)
  install(DIRECTORY examples DESTINATION share/vireo2 PATTERN __pycache__ EXCLUDE)
  install(FILES packaging/linux/copyright DESTINATION share/doc/vireo2)
  # Documents are packed as Debian wants them: without a time, so that a build can be repeated.
  set(changelog ${CMAKE_BINARY_DIR}/man/changelog.gz)
  add_custom_command(OUTPUT ${changelog}
    COMMAND ${CMAKE_COMMAND} -E make_directory ${CMAKE_BINARY_DIR}/man
    COMMAND gzip -9nc ${PROJECT_SOURCE_DIR}/CHANGELOG.md > ${changelog}
    DEPENDS CHANGELOG.md)
  add_custom_target(changelog ALL DEPENDS ${changelog})
  install(FILES ${changelog} DESTINATION share/doc/vireo2)
  foreach(program ${programs})
    install(FILES packaging/linux/vireo2.bash DESTINATION share/bash-completion/completions
      RENAME ${program})
  endforeach()

  # Manual pages say what --help says.
  find_program(HELP2MAN help2man)
  if(HELP2MAN)
    foreach(program ${programs})
      set(page ${CMAKE_BINARY_DIR}/man/${program}.1)
      add_custom_command(OUTPUT ${page}.gz
        COMMAND ${CMAKE_COMMAND} -E make_directory ${CMAKE_BINARY_DIR}/man
        COMMAND ${HELP2MAN} --no-info --no-discard-stderr --output=${page}
          --include=${PROJECT_SOURCE_DIR}/packaging/linux/${program}.h2m $<TARGET_FILE:${program}>
        COMMAND gzip -9nf ${page}
        DEPENDS ${program} packaging/linux/${program}.h2m VERBATIM)
      list(APPEND pages ${page}.gz)
    endforeach()
    add_custom_target(man ALL DEPENDS ${pages})
    install(FILES ${pages} DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
  endif()
endif()

set(CPACK_PACKAGE_NAME vireo2)
set(CPACK_PACKAGE_VENDOR "Vireo2")
set(CPACK_PACKAGE_CONTACT "Vireo2 maintainers <maintainers@vireo2.example>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "service tool for C166/C167 and TMS320F28xx controllers")
set(CPACK_PACKAGE_DESCRIPTION
  "Reads and writes the memory of controllers while they run, over one
 serial port: by address, or by variable name from linker maps. Watch list,
 graphs, recordings, console, scripts, target scope, data log, parameter sets,
 flash loader; a desktop program, a console program and a simulated target.")
set(CPACK_RESOURCE_FILE_LICENSE ${PROJECT_SOURCE_DIR}/LICENSE)
set(CPACK_STRIP_FILES ON)
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_SOURCE_DIR}/dist)
if(WIN32)
  set(CPACK_GENERATOR ZIP)
  set(CPACK_PACKAGE_FILE_NAME vireo2-${PROJECT_VERSION}-windows)
else()
  set(CPACK_GENERATOR DEB)
  set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
  set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
  set(CPACK_DEBIAN_PACKAGE_SECTION electronics)
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
  # What is loaded or started, not linked: nothing else would bring it.
  set(CPACK_DEBIAN_PACKAGE_DEPENDS "qt6-qpa-plugins, sensible-utils")
endif()
include(CPack)
