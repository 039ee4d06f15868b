#pragma once

#include "ui/controls/Sheet.h"

namespace ambertide {

/// Tells something that has gone wrong on a sheet over `host`, which owns it. The one button takes it away, and so do
/// Return and Escape. Of a message that is too long for a person the end is left out.
Sheet *showAlert(QWidget &host, const QString &title, const QString &message, const QString &button);

} // namespace ambertide
