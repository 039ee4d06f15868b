#pragma once

#include <QMargins>
#include <QPoint>

#include <optional>

class QWindow;

namespace ambertide {

/// Port: how this desktop lets a panel be placed beside the icon that opens it. Main thread.
class PanelPlacement
{
public:
    enum class Manner {
        Popup, ///< placed by the application; a press elsewhere closes it
        Layer, ///< anchored by the desktop; a press elsewhere closes it, and its owner has to close it when it is no
               ///< longer active
        Window ///< like any other window
    };

    virtual ~PanelPlacement() = default;

    virtual Manner manner() const = 0;
    /// Whether parts of a window can be see-through at present.
    virtual bool hasTransparency() const = 0;
    /// That of this desktop's own popups, in logical pixels.
    virtual int cornerRadius() const = 0;
    /// For Manner::Popup: whether a mouse button is down at present, wherever the pointer is.
    virtual bool isButtonHeld() const = 0;
    /// For Manner::Popup: the distance to keep from the desktop's panel, in logical pixels.
    virtual int gap() const = 0;
    /// For Manner::Layer: anchors `window`, which has its size but is not shown yet, beside the icon at `place`
    /// (logical pixels) or, without one, where the desktop usually has its icons. `shadow` is the margin around the
    /// part of the window that is to be beside the icon.
    virtual void anchor(QWindow &window, const QMargins &shadow, std::optional<QPoint> place) = 0;
};

} // namespace ambertide
