#pragma once

#include <QCheckBox>
#include <QVariantAnimation>

namespace ambertide {

/// A text with a switch. A click anywhere on it throws the switch, and so do Space and Return. To a screen reader it is
/// a check box.
class SwitchRow final : public QCheckBox
{
    Q_OBJECT

public:
    enum class Kind {
        Menu,  ///< the whole width, highlighted under the pointer
        Form,  ///< the whole width, in a card
        Inline ///< text and switch side by side
    };

    SwitchRow(const QString &text, Kind kind);

    Kind kind() const { return m_kind; }
    /// Where the thumb is, also while it moves: from 0 for off to 1 for on.
    double thumbPosition() const { return m_thumb.currentValue().toDouble(); }

protected:
    bool hitButton(const QPoint &position) const override { return rect().contains(position); }
    void keyPressEvent(QKeyEvent *event) override;
    void checkStateSet() override;
    void nextCheckState() override;

private:
    void moveThumb();

    Kind m_kind;
    QVariantAnimation m_thumb;
};

} // namespace ambertide
