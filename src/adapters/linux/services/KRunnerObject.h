#pragma once

#include "adapters/linux/bus/DBusSession.h"
#include "model/presets/ColorTemperature.h"

#include <functional>

namespace ambertide {

/// Answers the searches of KRunner, by the interface `org.kde.krunner1`, with the presets that a query may mean. The
/// caller is answered before `perform` runs, on the main thread.
class KRunnerObject
{
public:
    using Perform = std::function<void(ColorTemperature)>;

    /// `session` must outlive this.
    KRunnerObject(DBusSession &session, Perform perform);
    KRunnerObject(const KRunnerObject &) = delete;
    KRunnerObject &operator=(const KRunnerObject &) = delete;

private:
    struct Methods;

    DBusSession &m_session;
    Perform m_perform;
    Observation m_object;
};

} // namespace ambertide
