#pragma once

#include "ui/controls/Sheet.h"

namespace ambertide {

/// Says what has gone wrong, on a sheet over `host`, which owns it. The one button dismisses it, and so do Return and
/// Escape. The end of a message that is too long to be read is left out.
Sheet *showAlert(QWidget &host, const QString &title, const QString &message, const QString &button);

} // namespace ambertide
