# What `cmake --install` puts where, and the Debian package that CPack makes of it. The plug-in and the library it needs
# lie in lib/zemitunesdb whatever the system's own library folder is called: the program looks for them there, from
# its own folder (host/Host.h).

set(CMAKE_INSTALL_DOCDIR share/doc/zemitunesdb CACHE PATH "Folder of the documents")
include(GNUInstallDirs)
set(ZEM_INSTALL_PLUGIN_DIR lib/zemitunesdb)

# zem_install_program(TARGET): in bin, with a run path to the library that it shares with the plug-in. The build has it
# from the start, since CMake would pad a path that changes later with empty elements, which mean the current folder.
function(zem_install_program target)
  file(RELATIVE_PATH from_bin /${CMAKE_INSTALL_BINDIR} /${ZEM_INSTALL_PLUGIN_DIR})
  set_target_properties(${target} PROPERTIES BUILD_WITH_INSTALL_RPATH ON INSTALL_RPATH "$ORIGIN/${from_bin}")
  install(TARGETS ${target} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
endfunction()
