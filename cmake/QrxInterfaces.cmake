# The D-Bus interface descriptions of a module: installed as they are, and built into the program as
# the one source of its introspection data.
#
#   qrx_embed_interfaces(sources DistributedInterfaces.cpp.in
#     com.quillfen.QRXApplicationLauncherProtocol)
#
# Each name stands for interfaces/<name>.xml; the template says @<last part of the name>_XML@ where
# the text is to stand. `sources` gets the path of the source file that was written.
function(qrx_embed_interfaces sources template)
  foreach(name IN LISTS ARGN)
    set(description "${CMAKE_CURRENT_SOURCE_DIR}/interfaces/${name}.xml")
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${description}")
    file(READ "${description}" text)
    string(REGEX REPLACE "^.*\\." "" last_part "${name}")
    set(${last_part}_XML "${text}")
    install(FILES "${description}" DESTINATION "${CMAKE_INSTALL_DATADIR}/dbus-1/interfaces"
            COMPONENT service)
  endforeach()
  string(REGEX REPLACE "\\.in$" "" written "${template}")
  configure_file("${template}" "${CMAKE_CURRENT_BINARY_DIR}/${written}" @ONLY)
  set(${sources} "${CMAKE_CURRENT_BINARY_DIR}/${written}" PARENT_SCOPE)
endfunction()
