#pragma once

#include <QProgressBar>

namespace ambertide {

/// A slim bar in the accent colour. Busy until it is given a range, which it shows by motion, or by a still pattern
/// where motion is unwanted.
class ProgressBar final : public QProgressBar
{
    Q_OBJECT

public:
    explicit ProgressBar(const QString &accessibleName);
};

} // namespace ambertide
