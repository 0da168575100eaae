# Runs one scenario script through the script host and compares its transcript with
# the recorded one. Called as
#   cmake -DIMAGEEDIT=<exe> -DSCRIPT=<dir/NAME.ies> -DWORKDIR=<dir> -P run_scenario.cmake
#
# The script runs as `imageedit run NAME.ies` in an empty WORKDIR (so messages name
# the script without its folder), with tests/data reachable as `data/`. A first line
# `# options: ...` passes those command-line options (e.g. --trace).
#
# The transcript, compared with NAME.expected, is standard output, then — only when
# something was written there — a line "--- stderr ---" and standard error, then
# "--- exit N ---" with the exit status. On a mismatch the actual transcript is left
# in WORKDIR/NAME.actual and a unified diff is printed.
#
# Pictures: every file in the folder NAME/ beside the script must have been written by
# the run (under the same name) with exactly the same bytes.
foreach(variable IMAGEEDIT SCRIPT WORKDIR)
  if(NOT DEFINED ${variable})
    message(FATAL_ERROR "run_scenario.cmake needs -D${variable}=...")
  endif()
endforeach()

get_filename_component(name "${SCRIPT}" NAME_WE)
get_filename_component(scenarioDir "${SCRIPT}" DIRECTORY)
set(expectedFile "${scenarioDir}/${name}.expected")
if(NOT EXISTS "${expectedFile}")
  message(FATAL_ERROR "no recorded transcript ${expectedFile}")
endif()

file(REMOVE_RECURSE "${WORKDIR}")
file(MAKE_DIRECTORY "${WORKDIR}")
file(COPY "${SCRIPT}" DESTINATION "${WORKDIR}")
file(CREATE_LINK "${scenarioDir}/../data" "${WORKDIR}/data" SYMBOLIC)

set(options "")
file(STRINGS "${SCRIPT}" firstLine LIMIT_COUNT 1)
if(firstLine MATCHES "^# options: (.*)$")
  separate_arguments(options UNIX_COMMAND "${CMAKE_MATCH_1}")
endif()

execute_process(
  COMMAND "${IMAGEEDIT}" ${options} run "${name}.ies"
  WORKING_DIRECTORY "${WORKDIR}"
  OUTPUT_VARIABLE out
  ERROR_VARIABLE err
  RESULT_VARIABLE status)

set(transcript "${out}")
if(NOT err STREQUAL "")
  string(APPEND transcript "--- stderr ---\n${err}")
endif()
string(APPEND transcript "--- exit ${status} ---\n")

file(READ "${expectedFile}" expected)
if(NOT transcript STREQUAL expected)
  set(actualFile "${WORKDIR}/${name}.actual")
  file(WRITE "${actualFile}" "${transcript}")
  execute_process(COMMAND diff -u "${expectedFile}" "${actualFile}" OUTPUT_VARIABLE difference)
  # Printed as it stands; FATAL_ERROR would re-wrap the diff's lines.
  message(NOTICE "${difference}")
  message(FATAL_ERROR "scenario ${name}: transcript differs from ${name}.expected (actual: ${actualFile})")
endif()

file(GLOB expectedPictures "${scenarioDir}/${name}/*")
foreach(expectedPicture ${expectedPictures})
  get_filename_component(picture "${expectedPicture}" NAME)
  execute_process(COMMAND ${CMAKE_COMMAND} -E compare_files "${expectedPicture}" "${WORKDIR}/${picture}"
                  RESULT_VARIABLE differs)
  if(differs)
    message(FATAL_ERROR "scenario ${name}: ${picture} differs from ${expectedPicture} (or was not written)")
  endif()
endforeach()
