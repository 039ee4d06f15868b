#pragma once

#include "ui/controls/Page.h"

#include <QPointer>
#include <QWidget>

namespace ambertide {

/// A small surface over a window that has to be answered before the window can be used again. It keeps the keyboard to
/// itself. Belongs to the window it covers.
class Sheet final : public QWidget
{
    Q_OBJECT

public:
    /// Takes ownership of `content` and shows it in the middle of `host`, in `size` or as much more as the content
    /// needs. Whenever neededSize() changes, the host gets a LayoutRequest, so that it can grow if it is too small.
    Sheet(QWidget &host, QWidget *content, const QSize &size, const QString &accessibleName);

    /// Takes the sheet away and gives the focus back. `content` lives until control returns to the event loop.
    void dismiss();

    /// The least size of the host at which the whole sheet is seen.
    QSize neededSize() const;

Q_SIGNALS:
    /// Escape was pressed. The owner decides and calls dismiss().
    void cancelled();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    bool focusNextPrevChild(bool next) override;
    void keyPressEvent(QKeyEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    void cover();
    QSize surfaceSize() const;

    QSize m_smallest;
    QSize m_askedFor;
    Page m_surface;
    QPointer<QWidget> m_formerFocus;
};

} // namespace ambertide
