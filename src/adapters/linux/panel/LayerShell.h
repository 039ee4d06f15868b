#pragma once

#include "adapters/linux/panel/LayerGeometry.h"

class QScreen;
class QWindow;

/// Windows that the compositor anchors at the edges of a screen, by the protocol wlr-layer-shell. Main thread.
namespace ambertide::layer_shell {

/// Whether the compositor has it, and this build. Only where the toolkit runs on Wayland.
bool isOffered();

/// A window that has not been shown yet; a press elsewhere closes it. On no particular screen: on the one that the
/// compositor takes for active.
void anchor(QWindow &window, const LayerPosition &position, QScreen *screen);

} // namespace ambertide::layer_shell
