#pragma once

#include <QWidget>

class QVBoxLayout;

namespace ambertide {

/// Rows on a raised surface, separated by hairlines. Hidden rows have none.
class Card final : public QWidget
{
    Q_OBJECT

public:
    explicit Card(QWidget *parent = nullptr);

    /// Takes ownership of the row.
    void addRow(QWidget *row);
    void insertRow(int index, QWidget *row);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QVBoxLayout *m_rows = nullptr;
};

} // namespace ambertide
