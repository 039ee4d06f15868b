#pragma once

#include <QWidget>

class QHBoxLayout;
class QPushButton;
class QVBoxLayout;

namespace ambertide {

/// One state of the update window: a heading, a sentence, something to look at, and a row of buttons. Texts are shown
/// as they are, never as rich text: they may come from a feed.
class UpdatePage final : public QWidget
{
    Q_OBJECT

public:
    UpdatePage(const QString &heading, const QString &sentence, QWidget *parent);

    /// Takes the widget over and puts it below what is there.
    void addContent(QWidget *content);

    /// Buttons stand in the order of the calls; `aside` ones at the other end of the row.
    enum class Place { Row, Aside };
    QPushButton *addButton(const QString &text, Place place = Place::Row);

private:
    QVBoxLayout *m_content = nullptr;
    QHBoxLayout *m_aside = nullptr;
    QHBoxLayout *m_row = nullptr;
};

} // namespace ambertide
