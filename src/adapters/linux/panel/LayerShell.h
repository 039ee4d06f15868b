#pragma once

#include "adapters/linux/panel/LayerGeometry.h"

#include <QString>

#include <map>

class QScreen;
class QWindow;

/// Windows that the compositor anchors at the edges of a screen, by the protocol wlr-layer-shell. Main thread.
namespace ambertide::layer_shell {

/// Whether both the compositor and this build have it. Only where the toolkit runs on Wayland.
bool isOffered();

/// Anchors a window that has not been shown yet; a press elsewhere closes it. A null screen stands for the one that the
/// compositor takes for active.
void anchor(QWindow &window, const LayerPosition &position, QScreen *screen);

/// The screens' sizes in device pixels, by name. Asks the compositor, since the toolkit rounds scale factors up.
std::map<QString, QSize> deviceSizes();

} // namespace ambertide::layer_shell
