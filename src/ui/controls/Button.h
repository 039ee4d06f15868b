#pragma once

#include "ui/controls/TextLabel.h"

#include <QPushButton>

#include <optional>

namespace ambertide {

/// A push button of one of the house's kinds. Return presses it as Space does.
class Button : public QPushButton
{
    Q_OBJECT

public:
    enum class Kind {
        Bordered,
        Prominent, ///< the one that does what the window is for
        Icon,      ///< a symbol without a frame; its text is what a screen reader and the tool tip say
        Row        ///< a whole row without a frame, with text and maybe a symbol before it
    };

    /// Lengths are in logical pixels; symbols grow with the text. All but the kind is for icons and rows, which are
    /// highlighted under the pointer.
    struct Look
    {
        Kind kind = Kind::Bordered;
        QLatin1String symbol = {};
        int symbolSize = 16;
        int paddingX = 6;
        int paddingY = 6;
        int highlightInset = 0; ///< what is left of the surface around the highlight
        TextLabel::Ink ink = &Theme::text;
        std::optional<TextLabel::Ink> hoverInk = {}; ///< under the pointer, where it is another one
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
    QString m_tip; ///< not the widget's own, which assistive technology would read after the name
};

} // namespace ambertide
