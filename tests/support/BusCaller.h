#pragma once

#include "platform/linux/DBusSession.h"

#include <string>
#include <vector>

namespace ambertide {

/// A program on the session bus that calls the application's name. It serves Qt's events while it waits, so what it
/// calls may live in the same thread.
class BusCaller
{
public:
    /// The arguments are those of sd_bus_message_append(). The reply as text, as in "[(a, 1, {key=value})]"; for an
    /// error its name and a colon before its message; empty when nothing answers.
    std::string call(const char *path, const char *interface, const char *member, const char *types = "", ...);

    /// The same for a call that has been built.
    std::string send(sd_bus_message *call);

    /// For building calls.
    sd_bus *bus() const { return m_session.bus(); }

    /// The arguments of the signals of that interface, as text. Those sent before a reply are there with the reply.
    const std::vector<std::string> &observe(const std::string &interface);

private:
    std::vector<std::string> m_signals;
    DBusSession m_session{SdBusKind::session};
    Observation m_match;
};

} // namespace ambertide
