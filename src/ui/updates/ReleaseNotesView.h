#pragma once

#include <QPlainTextEdit>

namespace ambertide {

/// Release notes to be read and copied, by mouse or keyboard, on a card's surface. Plain text alone: it may come from a
/// feed.
class ReleaseNotesView final : public QPlainTextEdit
{
    Q_OBJECT

public:
    ReleaseNotesView();

protected:
    bool event(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    void follow();
};

} // namespace ambertide
