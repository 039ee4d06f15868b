#pragma once

#include <QMargins>
#include <QPoint>

#include <optional>

class QWindow;

namespace ambertide {

/// Port: how this desktop lets a panel stand beside the icon that opens it. Main thread.
class PanelPlacement
{
public:
    enum class Manner {
        Popup, ///< placed by the application; a press elsewhere closes it
        Layer, ///< anchored by the desktop; a press elsewhere closes it, and so does its owner when it is no longer
               ///< active
        Window ///< as any other window
    };

    virtual ~PanelPlacement() = default;

    virtual Manner manner() const = 0;
    /// Whether parts of a window can be see-through at present.
    virtual bool hasTransparency() const = 0;
    /// Of popups' corners on this desktop, in logical pixels.
    virtual int cornerRadius() const = 0;
    /// For Manner::Popup: whether a mouse button is down at present, wherever the pointer is.
    virtual bool isButtonHeld() const = 0;
    /// For Manner::Popup: how far from the desktop's panel, in logical pixels.
    virtual int gap() const = 0;
    /// For Manner::Layer: anchors a window that has its size and is not shown yet, beside the icon at `place`, in
    /// logical pixels, or where the desktop usually has it. What stands beside it is the window without its `shadow`.
    virtual void anchor(QWindow &window, const QMargins &shadow, std::optional<QPoint> place) = 0;
};

} // namespace ambertide
