#pragma once

#include "adapters/linux/bus/DBusSession.h"
#include "adapters/linux/bus/SdBusObject.h"

#include <QStringList>

namespace ambertide {

/// The watcher of a panel, on a connection of its own, in this thread.
class FakeWatcher
{
public:
    enum class Answer { Takes, Refuses };

    QStringList registered;

    explicit FakeWatcher(Answer answer = Answer::Takes) : m_answer(answer) {}

private:
    static const char *receive(FakeWatcher &watcher, SdBusReader &call, SdBusWriter &)
    {
        watcher.registered += QString::fromStdString(call.text().value_or(""));
        return watcher.m_answer == Answer::Takes ? noRefusal : "refused";
    }

    static constexpr char m_busName[] = "org.kde.StatusNotifierWatcher";
    static inline const sd_bus_vtable m_vtable[] = {
        SD_BUS_VTABLE_START(0),
        SD_BUS_METHOD("RegisterStatusNotifierItem", "s", "", handleCall<receive>, SD_BUS_VTABLE_UNPRIVILEGED),
        SD_BUS_VTABLE_END,
    };

    const Answer m_answer;
    DBusSession m_session{SdBusKind::session};
    Observation m_object = m_session.exportObject("/StatusNotifierWatcher", m_busName, m_vtable, this);
    Observation m_name = m_session.requestName(m_busName, [](sd_bus_message *) {});
};

} // namespace ambertide
