#pragma once

#include <QWidget>

class QHBoxLayout;
class QVBoxLayout;

namespace ambertide {

class Button;

/// One state of the update window: the application's icon, a heading and a sentence beside it, further content if there
/// is any, and a row of buttons. Texts are shown as they are, never as rich text: they may come from a feed.
class UpdatePage final : public QWidget
{
    Q_OBJECT

public:
    UpdatePage(const QString &heading, const QString &sentence, QWidget *parent);

    /// Takes ownership of the widget and puts it under the texts; the next, across the page under texts and icon.
    void addUnderTexts(QWidget *content);
    void addAcross(QWidget *content);

    /// Buttons are in the order of the calls; those `Aside` at the other end of the row.
    enum class Place { Row, Aside };
    Button *addButton(const QString &text, Place place = Place::Row);
    /// The one that Return presses.
    Button *addDefaultButton(const QString &text);

    /// Focuses the default button or, so that no key cancels by accident, the page itself.
    void takeFocus();

private:
    QVBoxLayout *m_texts = nullptr;
    QVBoxLayout *m_across = nullptr;
    QHBoxLayout *m_aside = nullptr;
    QHBoxLayout *m_row = nullptr;
    Button *m_default = nullptr;
};

} // namespace ambertide
