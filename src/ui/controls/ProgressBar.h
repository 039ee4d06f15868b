#pragma once

#include <QProgressBar>

namespace ambertide {

/// A slim bar in the accent. Busy until it is given a range; being busy shows as motion, or as a still pattern where
/// motion is unwanted.
class ProgressBar final : public QProgressBar
{
    Q_OBJECT

public:
    explicit ProgressBar(const QString &accessibleName);
};

} // namespace ambertide
