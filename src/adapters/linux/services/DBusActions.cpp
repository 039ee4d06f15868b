#include "adapters/linux/services/DBusActions.h"

namespace ambertide {

DBusActions::DBusActions(DBusSession &session, DBusApplicationObject &application, const Perform &perform)
    : m_runner(session, perform), m_searchProvider(session, perform, [&application] { application.activate({}); })
{
    for (const auto preset : allColorTemperatures())
        application.setAction(identifier(preset), [perform, preset](const std::string &) { perform(preset); });
}

} // namespace ambertide
