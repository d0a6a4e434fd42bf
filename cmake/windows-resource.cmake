# Gives a Windows program its icon, version and manifest (UTF-8, long paths, sharp on any
# monitor); does nothing elsewhere.
function(vireo2_add_windows_resource program description)
  if(NOT WIN32)
    return()
  endif()
  enable_language(RC)
  set(script ${CMAKE_CURRENT_BINARY_DIR}/${program}.rc)
  configure_file(${PROJECT_SOURCE_DIR}/packaging/windows/program.rc.in ${script} @ONLY)
  target_sources(${program} PRIVATE ${script})
endfunction()
