# The font files a web page carries: page_fonts.py makes the folder once per build
# tree from the fonts installed here, and ie_embed_page_fonts(TARGET) packs it into
# the target's file system at /fonts, where the page's font catalogue reads it
# (font_catalogue_web.cpp). The files ride inside the .wasm, so a page needs nothing
# beside the engine.
set(IE_PAGE_FONTS ${CMAKE_BINARY_DIR}/page-fonts CACHE INTERNAL "The page's font folder")
set(IE_PAGE_FONTS_STAMP ${CMAKE_BINARY_DIR}/page-fonts.stamp CACHE INTERNAL "Made with the page's font folder")
add_custom_command(
  OUTPUT ${IE_PAGE_FONTS_STAMP}
  COMMAND ${CMAKE_COMMAND} -E rm -rf ${IE_PAGE_FONTS}
  COMMAND Python3::Interpreter ${CMAKE_CURRENT_LIST_DIR}/page_fonts.py ${IE_PAGE_FONTS}
  COMMAND ${CMAKE_COMMAND} -E touch ${IE_PAGE_FONTS_STAMP}
  DEPENDS ${CMAKE_CURRENT_LIST_DIR}/page_fonts.py
  COMMENT "Making the page's font files (Liberation Sans, Korean and Chinese subsets of Noto Sans Mono CJK)")
add_custom_target(ie_page_fonts DEPENDS ${IE_PAGE_FONTS_STAMP})

function(ie_embed_page_fonts target)
  add_dependencies(${target} ie_page_fonts)
  target_link_options(${target} PRIVATE "SHELL:--embed-file ${IE_PAGE_FONTS}@/fonts")
  set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS ${IE_PAGE_FONTS_STAMP})
endfunction()
