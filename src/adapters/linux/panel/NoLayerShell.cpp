#include "adapters/linux/panel/LayerShell.h"

namespace ambertide::layer_shell {

bool isOffered() { return false; }

void anchor(QWindow &, const LayerPosition &, QScreen *) {}

} // namespace ambertide::layer_shell
