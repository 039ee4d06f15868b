#pragma once

#include "base/Observation.h"

#include <functional>
#include <string>

namespace ambertide {

/// Port: how the user wants programs to look. Main thread. Until the system has answered, and where it has no such
/// settings, there is no preference.
class Appearance
{
public:
    enum class ColorScheme { NoPreference, Light, Dark };

    virtual ~Appearance() = default;

    virtual ColorScheme colorScheme() const = 0;
    virtual bool prefersHighContrast() const = 0;
    virtual bool prefersReducedMotion() const = 0;
    /// The font that the user has chosen since this program started, if the toolkit does not follow such a change by
    /// itself; else empty. Family, styles and size in points, as in "Noto Sans Bold 12".
    virtual std::string changedFont() const = 0;
    /// By how much the user wants text larger than its fonts say, 0.5 to 3. On X11 the toolkit knows it already.
    virtual double textFactor() const = 0;

    /// `changed` is called after any of the above has changed.
    virtual Observation observe(std::function<void()> changed) = 0;
};

} // namespace ambertide
