# What is installed beside the program: man pages and shell completions, which it writes itself at build time,
# and the schema of its JSON.
set(PELMORA_ZSH_COMPLETIONS ${CMAKE_INSTALL_DATADIR}/zsh/site-functions CACHE STRING
  "Where the completion of zsh is installed; Debian's packages use share/zsh/vendor-completions")

set(texts ${PROJECT_BINARY_DIR}/program_texts)
add_custom_command(OUTPUT ${texts}/written
  COMMAND ${CMAKE_COMMAND} -DPROGRAM=$<TARGET_FILE:pelmora_cli> -DFOLDER=${texts}
    -P ${PROJECT_SOURCE_DIR}/cmake/write_program_texts.cmake
  DEPENDS pelmora_cli ${PROJECT_SOURCE_DIR}/cmake/write_program_texts.cmake
  COMMENT "Writing man pages and shell completions"
  VERBATIM)
add_custom_target(program_texts ALL DEPENDS ${texts}/written)

install(DIRECTORY ${texts}/man/ DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT program)
install(FILES ${texts}/completion/bash RENAME pelmora
  DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions COMPONENT program)
install(FILES ${texts}/completion/zsh RENAME _pelmora DESTINATION ${PELMORA_ZSH_COMPLETIONS} COMPONENT program)
install(FILES ${texts}/completion/fish RENAME pelmora.fish
  DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d COMPONENT program)
install(FILES ${PROJECT_SOURCE_DIR}/docs/schema/pelmora.schema.json DESTINATION ${CMAKE_INSTALL_DATADIR}/pelmora
  COMPONENT program)
