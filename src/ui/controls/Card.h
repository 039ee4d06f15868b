#pragma once

#include <QWidget>

class QVBoxLayout;

namespace ambertide {

/// Rows on a raised surface, with a hairline between each two. Hidden rows take no hairline.
class Card final : public QWidget
{
    Q_OBJECT

public:
    explicit Card(QWidget *parent = nullptr);

    /// Takes the row over.
    void addRow(QWidget *row);
    void insertRow(int index, QWidget *row);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QVBoxLayout *m_rows = nullptr;
};

} // namespace ambertide
