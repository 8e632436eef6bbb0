# Files that are built into a program as they are, so that tools can check them as what they are.
#
#   qrx_embed_files(source report/PageFiles.cpp.in report/page page.html page.css)
#
# The template says @page_css_TEXT@ where the text of page.css is to stand, and @page_css_SHA256@
# for its hash. `source` gets the path of the source file that was written.
function(qrx_embed_files source template folder)
  foreach(name IN LISTS ARGN)
    set(file "${CMAKE_CURRENT_SOURCE_DIR}/${folder}/${name}")
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${file}")
    string(MAKE_C_IDENTIFIER "${name}" identifier)
    file(READ "${file}" ${identifier}_TEXT)
    file(SHA256 "${file}" ${identifier}_SHA256)
  endforeach()
  string(REGEX REPLACE "\\.in$" "" written "${template}")
  configure_file("${template}" "${CMAKE_CURRENT_BINARY_DIR}/${written}" @ONLY)
  set(${source} "${CMAKE_CURRENT_BINARY_DIR}/${written}" PARENT_SCOPE)
endfunction()
