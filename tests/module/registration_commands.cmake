# Registers the control module with the script host, shows the registration, removes
# it and shows that nothing is left, in a registry of its own that already holds
# another module's key; then a malformed registry. Called as
#   cmake -DIMAGEEDIT=<exe> -DWORKDIR=<dir> -DEXPECTED=<file> -P registration_commands.cmake
#
# The transcript, compared with EXPECTED, has for each command a line "$ imageedit
# ARGS", its standard output and error, and "--- exit N ---". The work folder and the
# program's folder, where the module lies, read <work> and <program>.
foreach(variable IMAGEEDIT WORKDIR EXPECTED)
  if(NOT DEFINED ${variable})
    message(FATAL_ERROR "registration_commands.cmake needs -D${variable}=...")
  endif()
endforeach()

file(REMOVE_RECURSE "${WORKDIR}")
file(MAKE_DIRECTORY "${WORKDIR}")
set(registry "${WORKDIR}/registry")
file(WRITE "${registry}" "[CLSID\\{11111111-2222-3333-4444-555555555555}]\n@=\"Another control\"\n")

set(transcript "")
function(run)
  execute_process(
    COMMAND ${CMAKE_COMMAND} -E env OSTREL_REGISTRY=${registry} ${IMAGEEDIT} ${ARGN}
    OUTPUT_VARIABLE out
    ERROR_VARIABLE err
    RESULT_VARIABLE status)
  string(JOIN " " words ${ARGN})
  set(transcript "${transcript}$ imageedit ${words}\n${out}${err}--- exit ${status} ---\n" PARENT_SCOPE)
endfunction()

run(info)
run(register)
run(info)
run(unregister)
run(info)
file(READ "${registry}" left)
string(APPEND transcript "registry after unregistering:\n${left}")
file(APPEND "${registry}" "[Broken\n")
run(info)
run(register)

get_filename_component(program "${IMAGEEDIT}" DIRECTORY)
get_filename_component(program "${program}" REALPATH)
string(REPLACE "${WORKDIR}" "<work>" transcript "${transcript}")
string(REPLACE "${program}" "<program>" transcript "${transcript}")

file(READ "${EXPECTED}" expected)
if(NOT transcript STREQUAL expected)
  file(WRITE "${WORKDIR}/transcript.actual" "${transcript}")
  execute_process(COMMAND diff -u "${EXPECTED}" "${WORKDIR}/transcript.actual" OUTPUT_VARIABLE difference)
  message(NOTICE "${difference}")
  message(FATAL_ERROR "the registration commands' transcript differs from ${EXPECTED}")
endif()
