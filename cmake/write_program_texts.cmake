# cmake -DPROGRAM=pelmora -DFOLDER=folder -P write_program_texts.cmake
#
# Writes folder/man/*.1, a page of the program and of each of its commands, and folder/completion/{bash,zsh,fish}.
function(write file)
  execute_process(COMMAND ${PROGRAM} ${ARGN} OUTPUT_FILE ${file} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

file(REMOVE_RECURSE ${FOLDER})
file(MAKE_DIRECTORY ${FOLDER}/man ${FOLDER}/completion)
write(${FOLDER}/man/pelmora.1 man)

# The program's page refers to a page of every command: \fBpelmora\-import\-curve\fR(1)
file(READ ${FOLDER}/man/pelmora.1 page)
string(REPLACE "\\-" "-" page "${page}")
string(REGEX MATCHALL "pelmora-[a-z-]+\\\\fR\\(1\\)" references "${page}")
if(NOT references)
  message(FATAL_ERROR "the man page of ${PROGRAM} refers to no page of a command")
endif()
foreach(reference IN LISTS references)
  string(REGEX REPLACE "^pelmora-([a-z-]+)\\\\.*" "\\1" command "${reference}")
  write(${FOLDER}/man/pelmora-${command}.1 man ${command})
endforeach()

foreach(shell bash zsh fish)
  write(${FOLDER}/completion/${shell} completion ${shell})
endforeach()
file(TOUCH ${FOLDER}/written)
