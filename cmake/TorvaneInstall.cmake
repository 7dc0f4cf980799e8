# Where an installed Torvane lies, after Debian's rules for games, and how a program joins it.
#
#   PREFIX/lib/games/torvane/<program>   the real programs
#   PREFIX/lib/games/torvane/assets      a link to ../../../share/games/torvane
#   PREFIX/share/games/torvane/          the asset tree (images, music, level packs)
#   PREFIX/games/<program>               a link to ../lib/games/torvane/<program>
#
# A program finds its assets from its own real path (/proc/self/exe resolves the link in
# PREFIX/games), in an "assets" folder beside it, so the tree works in any prefix and from any
# working directory, and also unpacked from the .deb. All links are relative.

set(TORVANE_INSTALL_BINDIR games)
set(TORVANE_INSTALL_PROGRAMDIR lib/games/torvane)
set(TORVANE_INSTALL_DATADIR share/games/torvane)

# The links are made once in the build folder and installed as they are.
set(TORVANE_LINK_DIR ${PROJECT_BINARY_DIR}/install-links)
file(MAKE_DIRECTORY ${TORVANE_LINK_DIR}/bin ${TORVANE_LINK_DIR}/programs)

# torvane_install_program(<target>): installs an executable target as a program of the game,
# the real file in PREFIX/lib/games/torvane and its link in PREFIX/games.
function(torvane_install_program target)
  get_target_property(name ${target} OUTPUT_NAME)
  if(NOT name)
    set(name ${target})
  endif()
  install(TARGETS ${target} RUNTIME DESTINATION ${TORVANE_INSTALL_PROGRAMDIR})
  # A stripped program (cpack, cmake --install --strip) also loses the compilers' notes, as
  # Debian's own stripping does.
  install(CODE "if(CMAKE_INSTALL_DO_STRIP)
    execute_process(COMMAND \"${CMAKE_OBJCOPY}\" --remove-section=.comment
      \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${TORVANE_INSTALL_PROGRAMDIR}/${name}\" COMMAND_ERROR_IS_FATAL ANY)
  endif()")
  file(RELATIVE_PATH to /${TORVANE_INSTALL_BINDIR} /${TORVANE_INSTALL_PROGRAMDIR}/${name})
  file(CREATE_LINK ${to} ${TORVANE_LINK_DIR}/bin/${name} SYMBOLIC)
  install(FILES ${TORVANE_LINK_DIR}/bin/${name} DESTINATION ${TORVANE_INSTALL_BINDIR})
endfunction()

# The asset tree, and the link that lets the programs find it beside them.
install(DIRECTORY ${PROJECT_SOURCE_DIR}/assets/ DESTINATION ${TORVANE_INSTALL_DATADIR})
file(RELATIVE_PATH to /${TORVANE_INSTALL_PROGRAMDIR} /${TORVANE_INSTALL_DATADIR})
file(CREATE_LINK ${to} ${TORVANE_LINK_DIR}/programs/assets SYMBOLIC)
install(FILES ${TORVANE_LINK_DIR}/programs/assets DESTINATION ${TORVANE_INSTALL_PROGRAMDIR})
