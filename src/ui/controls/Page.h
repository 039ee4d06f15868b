#pragma once

#include <QScrollArea>

namespace ambertide {

/// The part of its screen that a window can fill, frame included. Wayland tells neither the space that the desktop's
/// panels take nor the height of a title bar, so there their usual height is left out.
QRect roomOnScreen(const QWidget &window);

/// Shows its content, and scrolls it where there is not enough room; asks to be as wide as the content. Has no
/// background of its own. A control that gets the focus is scrolled into view.
class Page final : public QScrollArea
{
    Q_OBJECT

public:
    /// Takes ownership of the content.
    explicit Page(QWidget *content, QWidget *parent = nullptr);
    ~Page() override;

    /// The height at which nothing has to be scrolled, at this width. Both in logical pixels.
    int idealHeight(int width) const;
    QSize minimumSizeHint() const override;

Q_SIGNALS:
    void idealHeightChanged();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    void chooseScrollBar();
    void revealFocus(QWidget *former, QWidget *focused);
};

} // namespace ambertide
