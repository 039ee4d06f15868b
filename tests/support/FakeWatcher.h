#pragma once

#include "adapters/linux/bus/DBusSession.h"
#include "adapters/linux/bus/SdBusReader.h"

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
    static int receive(sd_bus_message *call, void *context, sd_bus_error *)
    {
        auto &watcher = *static_cast<FakeWatcher *>(context);
        watcher.registered += QString::fromStdString(SdBusReader(call).text().value_or(""));
        return watcher.m_answer == Answer::Takes ? sd_bus_reply_method_return(call, "") : -EPERM;
    }

    static constexpr char m_busName[] = "org.kde.StatusNotifierWatcher";
    static inline const sd_bus_vtable m_vtable[] = {
        SD_BUS_VTABLE_START(0),
        SD_BUS_METHOD("RegisterStatusNotifierItem", "s", "", receive, SD_BUS_VTABLE_UNPRIVILEGED),
        SD_BUS_VTABLE_END,
    };

    const Answer m_answer;
    DBusSession m_session{SdBusKind::session};
    Observation m_object = m_session.install([this](sd_bus *bus) {
        sd_bus_slot *slot = nullptr;
        sd_bus_add_object_vtable(bus, &slot, "/StatusNotifierWatcher", m_busName, m_vtable, this);
        return SdBusSlot(slot);
    });
    Observation m_name = m_session.install([](sd_bus *bus) {
        sd_bus_slot *slot = nullptr;
        const auto ignore = [](sd_bus_message *, void *, sd_bus_error *) { return 0; };
        sd_bus_request_name_async(bus, &slot, m_busName, 0, ignore, nullptr);
        return SdBusSlot(slot);
    });
};

} // namespace ambertide
