#pragma once

#include <QTabBar>

#include <vector>

namespace ambertide {

/// The tabs of a settings window: a symbol over a word, in the middle of the width.
class IconTabBar final : public QTabBar
{
    Q_OBJECT

public:
    IconTabBar();

    void addTab(QLatin1String symbol, const QString &text);

protected:
    bool event(QEvent *event) override;
    QSize tabSizeHint(int index) const override;
    QSize minimumTabSizeHint(int index) const override { return tabSizeHint(index); }
    void paintEvent(QPaintEvent *event) override;

private:
    std::vector<QLatin1String> m_symbols;
};

} // namespace ambertide
