#pragma once

#include "adapters/linux/bus/DBusSession.h"
#include "model/presets/ColorTemperature.h"

#include <functional>

namespace ambertide {

/// Answers searches of GNOME Shell, through the interface `org.gnome.Shell.SearchProvider2`, with the presets that the
/// terms may mean. Callbacks run on the main thread, after the caller has been answered.
class GnomeSearchProvider
{
public:
    using Perform = std::function<void(ColorTemperature)>;

    /// `launch` is called when the search is to be continued in the application. `session` must outlive this.
    GnomeSearchProvider(DBusSession &session, Perform perform, std::function<void()> launch);
    GnomeSearchProvider(const GnomeSearchProvider &) = delete;
    GnomeSearchProvider &operator=(const GnomeSearchProvider &) = delete;

private:
    struct Methods;

    DBusSession &m_session;
    Perform m_perform;
    std::function<void()> m_launch;
    Observation m_object;
};

} // namespace ambertide
