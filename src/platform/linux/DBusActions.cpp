#include "platform/linux/DBusActions.h"

#include <utility>

namespace ambertide {

DBusActions::DBusActions(DBusSession &session, DBusApplicationObject &application, const Perform &perform,
                         std::function<void()> launch)
    : m_runner(session, perform), m_searchProvider(session, perform, std::move(launch))
{
    for (const auto preset : allColorTemperatures())
        application.setAction(identifier(preset), [perform, preset](const std::string &) { perform(preset); });
}

} // namespace ambertide
