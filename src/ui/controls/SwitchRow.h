#pragma once

#include <QCheckBox>
#include <QVariantAnimation>

namespace ambertide {

/// A text with a switch, of which every pixel throws it. To a screen reader it is a check box.
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

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

    /// Follows a value that changed elsewhere; no signal.
    void show(bool isOn);
    using QWidget::show;

protected:
    bool event(QEvent *event) override;
    bool hitButton(const QPoint &position) const override { return rect().contains(position); }
    void keyPressEvent(QKeyEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void checkStateSet() override;
    void nextCheckState() override;

private:
    void moveThumb();

    Kind m_kind;
    QVariantAnimation m_thumb; ///< 0 at off to 1 at on
};

} // namespace ambertide
