#pragma once

#include "base/Observation.h"

#include <functional>
#include <string>

namespace ambertide {

/// Port: how the user wants programs to look. Main thread. Until the system has answered, and where it has no such
/// settings, nothing is preferred.
class Appearance
{
public:
    enum class ColorScheme { NoPreference, Light, Dark };

    virtual ~Appearance() = default;

    virtual ColorScheme colorScheme() const = 0;
    virtual bool prefersHighContrast() const = 0;
    virtual bool prefersReducedMotion() const = 0;
    /// Family, styles and points of what the user has set since the start, as in "Noto Sans Bold 12", where the toolkit
    /// does not follow such changes; else empty.
    virtual std::string changedFont() const = 0;

    /// `changed` is called after any of them changed.
    virtual Observation observe(std::function<void()> changed) = 0;
};

} // namespace ambertide
