#pragma once

#include "ui/controls/TextLabel.h"

#include <QPushButton>

#include <optional>

namespace ambertide {

/// What all buttons have in common: Return presses them as Space does, and their text grows with the user's.
class PushControl : public QPushButton
{
    Q_OBJECT

protected:
    explicit PushControl(const QString &text = {});

    bool event(QEvent *event) override;
};

/// A push button.
class Button final : public PushControl
{
    Q_OBJECT

public:
    enum class Kind { Bordered, Prominent };

    static constexpr int ringGap = 2; ///< logical pixels around what is drawn, for the focus ring

    explicit Button(const QString &text, Kind kind = Kind::Bordered);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    Kind m_kind;
};

/// A symbol that can be pressed, without a frame. Its name is what a screen reader and the tool tip say.
class IconButton final : public PushControl
{
    Q_OBJECT

public:
    /// `symbolSize` and `padding` in logical pixels. Under the pointer the symbol takes `hoverInk` if there is one, and
    /// the surface is highlighted.
    struct Look
    {
        QLatin1String symbol;
        int symbolSize = 16;
        int padding = 6;
        TextLabel::Ink ink = &Theme::secondaryText;
        std::optional<TextLabel::Ink> hoverInk = {};
    };

    IconButton(const Look &look, const QString &name);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    Look m_look;
};

/// A whole row that can be pressed, with text and maybe a symbol before it; highlighted under the pointer.
class RowButton final : public PushControl
{
    Q_OBJECT

public:
    /// In logical pixels.
    struct Look
    {
        int horizontalPadding = 8;
        int verticalPadding = 6;
        int highlightInset = 0; ///< what is left of the surface around the highlight
        std::optional<QLatin1String> symbol = {};
        TextLabel::Ink ink = &Theme::text;
        TextLabel::Ink hoverInk = &Theme::text;
    };

    RowButton(const QString &text, const Look &look);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    Look m_look;
};

} // namespace ambertide
