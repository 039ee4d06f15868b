#pragma once

#include "ui/controls/TextLabel.h"

#include <QPushButton>

#include <optional>

namespace ambertide {

/// A push button in one of the kinds that these windows use. Return presses it, as Space does.
class Button : public QPushButton
{
    Q_OBJECT

public:
    enum class Kind {
        Bordered,
        Prominent, ///< the one for the window's main purpose
        Icon,      ///< a symbol without a frame; its text is what a screen reader and the tool tip say
        Row        ///< a whole row without a frame, with text and perhaps a symbol before it
    };

    /// Lengths are in logical pixels; symbols grow with the text. Everything but `kind` applies only to icons and rows,
    /// which are highlighted under the pointer.
    struct Look
    {
        Kind kind = Kind::Bordered;
        QLatin1String symbol = {};
        int symbolSize = 16;
        int paddingX = 6;
        int paddingY = 6;
        int highlightInset = 0; ///< the highlight's distance from the edges
        TextLabel::Ink ink = &Theme::text;
        std::optional<TextLabel::Ink> hoverInk = {}; ///< under the pointer, if different from `ink`
    };

    static constexpr int ringGap = 2; ///< logical pixels around a frame, for the focus ring

    explicit Button(const QString &text, Kind kind = Kind::Bordered);
    Button(const QString &text, const Look &look);

    const Look &look() const { return m_look; }

protected:
    bool event(QEvent *event) override;
    void setSymbol(QLatin1String symbol, TextLabel::Ink ink);

private:
    Look m_look;
    QString m_tip; ///< instead of the widget's own, which assistive technology would read after the name
};

} // namespace ambertide
