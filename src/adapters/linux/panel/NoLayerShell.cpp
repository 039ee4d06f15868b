#include "adapters/linux/panel/LayerShell.h"

namespace ambertide::layer_shell {

bool isOffered() { return false; }

void anchor(QWindow &, const LayerPosition &, QScreen *) {}

std::map<QString, QSize> deviceSizes() { return {}; }

} // namespace ambertide::layer_shell
