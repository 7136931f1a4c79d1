# What an installed program brings along besides itself.
include(GNUInstallDirs)

# The manual page and the completions, written by the command out of its own table.
set(words ${CMAKE_BINARY_DIR}/words)
file(MAKE_DIRECTORY ${words})
add_custom_command(
  OUTPUT ${words}/ravik.1 ${words}/ravik.bash ${words}/ravik.zsh ${words}/ravik.fish
  COMMAND ravik help --man > ${words}/ravik.1
  COMMAND ravik help --completions bash > ${words}/ravik.bash
  COMMAND ravik help --completions zsh > ${words}/ravik.zsh
  COMMAND ravik help --completions fish > ${words}/ravik.fish
  DEPENDS ravik VERBATIM)
if(NOT CMAKE_CROSSCOMPILING AND NOT RAVIK_SANITIZE)
  add_custom_target(ravik-words ALL DEPENDS ${words}/ravik.1)
  install(FILES ${words}/ravik.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
  install(FILES ${words}/ravik.bash DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME ravik)
  install(FILES ${words}/ravik.fish DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d)
  # Debian's zsh looks in a folder of its own for what packages bring.
  set(zsh site-functions)
  if(EXISTS /etc/debian_version)
    set(zsh vendor-completions)
  endif()
  install(FILES ${words}/ravik.zsh DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/${zsh} RENAME _ravik)
endif()

# What a desktop needs to know of the app.
if(TARGET ravik-desktop AND CMAKE_SYSTEM_NAME STREQUAL "Linux")
  set(id dev.tolvane.Ravik)
  set(share ${PROJECT_SOURCE_DIR}/App/Share)
  install(FILES ${share}/${id}.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
  install(FILES ${share}/${id}.metainfo.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
  install(FILES ${share}/icons/${id}.svg DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)
  install(FILES ${share}/icons/${id}-symbolic.svg DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/symbolic/apps)
  # These name the program by its whole path, which is known when it is installed: a package is put together in a
  # folder of its own, and unpacked below its prefix.
  foreach(file ${id}.service app-${id}.service)
    set(folder ${CMAKE_INSTALL_DATADIR}/dbus-1/services)
    if(file MATCHES "^app-")
      set(folder lib/systemd/user)
    endif()
    install(CODE "
      set(prefix \"\${CMAKE_INSTALL_PREFIX}\")
      if(prefix MATCHES \"/_CPack_Packages/\")
        set(prefix /usr)
      endif()
      set(program \"\${prefix}/${CMAKE_INSTALL_BINDIR}/ravik-desktop\")
      configure_file(\"${share}/${file}.in\" \"${CMAKE_BINARY_DIR}/installed/${file}\" @ONLY)
      file(INSTALL \"${CMAKE_BINARY_DIR}/installed/${file}\"
           DESTINATION \"\${CMAKE_INSTALL_PREFIX}/${folder}\")")
  endforeach()
endif()
