#pragma once

#include "adapters/linux/services/DBusApplicationObject.h"
#include "adapters/linux/services/GnomeSearchProvider.h"
#include "adapters/linux/services/KRunnerObject.h"

namespace ambertide {

/// Offers the presets wherever the desktops look for an application's actions: in KRunner, in GNOME Shell's search and,
/// each by its identifier, as actions of the application object. Main thread.
class DBusActions
{
public:
    using Perform = std::function<void(ColorTemperature)>;

    /// A search that is to go on in the application activates it. The session and the object must outlive this.
    DBusActions(DBusSession &session, DBusApplicationObject &application, const Perform &perform);

private:
    KRunnerObject m_runner;
    GnomeSearchProvider m_searchProvider;
};

} // namespace ambertide
