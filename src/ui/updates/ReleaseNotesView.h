#pragma once

#include "update/Appcast.h"

#include <QPlainTextEdit>

namespace ambertide {

/// Release notes to be read and copied, by mouse or keyboard, on a card's surface. They are foreign: nothing that they
/// name is loaded, run or opened, and no content takes longer to show than others of its length.
class ReleaseNotesView final : public QPlainTextEdit
{
    Q_OBJECT

public:
    ReleaseNotesView();

    /// HTML becomes plain text, with paragraphs and list items on lines of their own.
    void setNotes(const ReleaseNotes &notes);

protected:
    bool event(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    void follow();
};

} // namespace ambertide
