# The panel beside the icon on Wayland. Needs Qt 6.5 for the toolkit's connection; without it, panels on Wayland are
# ordinary windows.
find_package(LayerShellQt 6 QUIET)
if(LayerShellQt_FOUND)
  choose_source(adapters/linux/panel LayerShell OF LayerShell NoLayerShell)
  target_link_libraries(ambertide_adapters_linux_panel PRIVATE LayerShellQt::Interface PkgConfig::WAYLAND_CLIENT)
else()
  choose_source(adapters/linux/panel NoLayerShell OF LayerShell NoLayerShell)
endif()
