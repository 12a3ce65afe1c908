# Code that speaks Wayland's protocols.

pkg_check_modules(TILEWRIGHT_WAYLAND REQUIRED IMPORTED_TARGET wayland-client)
pkg_get_variable(wayland_scanner wayland-scanner wayland_scanner)
pkg_get_variable(wayland_protocols wayland-protocols pkgdatadir)
file(REAL_PATH "${wayland_protocols}" wayland_protocols)

# tilewright_wayland_protocols(<target> <files...>)
#
# Generates what C needs to speak these protocols, and for the tests, which have a compositor of
# their own, what it takes to answer.
function(tilewright_wayland_protocols target)
  set(folder "${CMAKE_CURRENT_BINARY_DIR}/protocols")
  file(MAKE_DIRECTORY "${folder}")
  set(sources)
  foreach(file ${ARGN})
    get_filename_component(name "${file}" NAME_WE)
    foreach(kind client-header server-header private-code)
      set(generated "${folder}/${name}-client.h")
      if(kind STREQUAL "server-header")
        set(generated "${folder}/${name}-server.h")
      elseif(kind STREQUAL "private-code")
        set(generated "${folder}/${name}.c")
      endif()
      add_custom_command(OUTPUT "${generated}"
        COMMAND "${wayland_scanner}" ${kind} "${file}" "${generated}"
        DEPENDS "${file}" VERBATIM)
      list(APPEND sources "${generated}")
    endforeach()
  endforeach()
  add_library(${target} STATIC ${sources})
  target_include_directories(${target} SYSTEM PUBLIC "${folder}")
  target_link_libraries(${target} PUBLIC PkgConfig::TILEWRIGHT_WAYLAND PRIVATE tilewright_options)
endfunction()
