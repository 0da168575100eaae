# Script mode: writes OUTPUT, one IE_CURSOR_FILE(NAME, TEXT) line per cursor file of
# SOURCE_DIR with the file's text as a raw string literal, for module_resources.cpp to
# check and parse. The output is rewritten only when it changes.
file(GLOB files "${SOURCE_DIR}/*.txt")
list(SORT files)
set(content "// Generated from src/resources/cursors/*.txt by embed_cursors.cmake: edit those files.\n")
foreach(path IN LISTS files)
  get_filename_component(name "${path}" NAME)
  file(READ "${path}" text)
  string(APPEND content "IE_CURSOR_FILE(\"${name}\", R\"cursor(${text})cursor\")\n")
endforeach()
file(WRITE "${OUTPUT}.new" "${content}")
file(COPY_FILE "${OUTPUT}.new" "${OUTPUT}" ONLY_IF_DIFFERENT)
file(REMOVE "${OUTPUT}.new")
