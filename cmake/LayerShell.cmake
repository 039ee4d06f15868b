# The panel beside the icon on Wayland. Needs Qt 6.5 for the toolkit's connection; without it, panels on Wayland are
# ordinary windows.
find_package(LayerShellQt 6 QUIET)
get_target_property(sources ambertide_adapters_linux_panel SOURCES)
if(LayerShellQt_FOUND)
  list(FILTER sources EXCLUDE REGEX "/NoLayerShell.cpp$")
  target_link_libraries(ambertide_adapters_linux_panel PRIVATE LayerShellQt::Interface PkgConfig::WAYLAND_CLIENT)
else()
  list(FILTER sources EXCLUDE REGEX "/LayerShell.cpp$")
endif()
set_target_properties(ambertide_adapters_linux_panel PROPERTIES SOURCES "${sources}")
