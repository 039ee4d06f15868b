#pragma once

#include "adapters/linux/bus/DBusSession.h"
#include "model/presets/ColorTemperature.h"

#include <functional>

namespace ambertide {

/// Answers searches of KRunner, through the interface `org.kde.krunner1`, with the presets that a query may mean.
/// `perform` runs on the main thread, after the caller has been answered.
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
