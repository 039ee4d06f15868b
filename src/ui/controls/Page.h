#pragma once

#include <QScrollArea>

namespace ambertide {

/// Where on its screen a window can be, its frame included. Wayland tells neither what the desktop's panels take nor
/// how high a title bar is: there it is less by as much as these usually are.
QRect roomOnScreen(const QWidget &window);

/// Shows a content that may be taller than there is room, and then scrolls it; it is never narrower than its content.
/// Has no surface of its own. What takes the focus is scrolled into view.
class Page final : public QScrollArea
{
    Q_OBJECT

public:
    /// Takes the content over.
    explicit Page(QWidget *content, QWidget *parent = nullptr);
    ~Page() override;

    /// In logical pixels: how high the page has to be for nothing to be scrolled, at this width.
    int idealHeight(int width) const;
    QSize minimumSizeHint() const override;

Q_SIGNALS:
    void idealHeightChanged();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void revealFocus(QWidget *former, QWidget *focused);
};

} // namespace ambertide
