# The code of wayland-scanner is C, and its headers are no example of our style: a target apart, seen as a system's.
find_program(WAYLAND_SCANNER wayland-scanner REQUIRED)

# ambertide_wayland_protocols(<target> <protocol file>...): a library of these protocols with the headers
# <name>-client-protocol.h and, for the compositor of the tests, <name>-server-protocol.h.
function(ambertide_wayland_protocols target)
  set(folder ${CMAKE_CURRENT_BINARY_DIR}/${target})
  file(MAKE_DIRECTORY ${folder})
  set(generated)
  foreach(protocol IN LISTS ARGN)
    cmake_path(GET protocol STEM name)
    cmake_path(ABSOLUTE_PATH protocol)
    foreach(kind IN ITEMS private-code client-header server-header)
      set(output ${folder}/${name}-${kind})
      string(REGEX REPLACE "-(client|server)-header$" "-\\1-protocol.h" output ${output})
      string(REGEX REPLACE "-private-code$" "-protocol.c" output ${output})
      add_custom_command(OUTPUT ${output} DEPENDS ${protocol}
        COMMAND ${WAYLAND_SCANNER} --strict ${kind} ${protocol} ${output})
      list(APPEND generated ${output})
    endforeach()
  endforeach()
  add_library(${target} STATIC ${generated})
  target_include_directories(${target} SYSTEM PUBLIC ${folder})
  target_link_libraries(${target} PUBLIC PkgConfig::WAYLAND_CLIENT)
endfunction()
