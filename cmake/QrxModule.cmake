# One library per folder of src/, and the folders that it may include.
#
#   qrx_add_module(volumes
#     HEADERS QRXCanonXFUtility.h      # public, each compiles on its own
#     SOURCES QRXCanonXFUtility.cpp
#     DEPENDS readers foundation       # the only folders it may include
#     LINK PkgConfig::glib)            # foreign libraries, adapters only
#
# The allowed includes are written to <build>/layering.txt, which the layering test reads.
set_property(GLOBAL PROPERTY QRX_LAYERING "")

function(qrx_add_module name)
  cmake_parse_arguments(ARG "" "FOLDER" "HEADERS;SOURCES;DEPENDS;LINK" ${ARGN})
  string(REPLACE "/" "_" target "qrx_${name}")
  if(ARG_SOURCES)
    add_library(${target} STATIC ${ARG_SOURCES})
    set(scope PUBLIC)
    # Public, so that an adapter's own headers compile by themselves; that nobody else includes the
    # foreign library is for the layering test to see.
    target_link_libraries(${target} PUBLIC ${ARG_LINK})
  else()
    add_library(${target} INTERFACE)
    set(scope INTERFACE)
  endif()
  target_sources(
    ${target} ${scope} FILE_SET HEADERS BASE_DIRS "${PROJECT_SOURCE_DIR}/src" FILES ${ARG_HEADERS})
  set_target_properties(${target} PROPERTIES VERIFY_INTERFACE_HEADER_SETS ON)
  target_link_libraries(${target} ${scope} qrx_compile_options)
  foreach(dependency IN LISTS ARG_DEPENDS)
    string(REPLACE "/" "_" dependency_target "qrx_${dependency}")
    target_link_libraries(${target} ${scope} ${dependency_target})
  endforeach()
  string(REPLACE ";" " " allowed "${ARG_DEPENDS}")
  set_property(GLOBAL APPEND_STRING PROPERTY QRX_LAYERING "${name}: ${allowed}\n")
endfunction()

function(qrx_finish_layering)
  get_property(rules GLOBAL PROPERTY QRX_LAYERING)
  file(CONFIGURE OUTPUT "${CMAKE_BINARY_DIR}/layering.txt" CONTENT "${rules}" @ONLY)
endfunction()
