#include "support/BusCaller.h"

#include "platform/linux/BusNames.h"

#include <QTest>

#include <cstdarg>
#include <sstream>

namespace ambertide {

namespace {

constexpr int patience = 20'000; // ms; only a failure takes as long

template <typename Value>
Value readBasic(sd_bus_message *message, char type)
{
    Value value{};
    sd_bus_message_read_basic(message, type, static_cast<void *>(&value));
    return value;
}

std::string nextText(sd_bus_message *message);

std::string contentsText(sd_bus_message *message, const char *separator)
{
    std::string text;
    while (sd_bus_message_at_end(message, 0) == 0)
        text.append(text.empty() ? "" : separator).append(nextText(message));
    return text;
}

std::string nextText(sd_bus_message *message)
{
    char type = 0;
    const char *peeked = nullptr;
    if (sd_bus_message_peek_type(message, &type, &peeked) <= 0)
        return "?";
    std::ostringstream text;
    switch (type) {
    case 's':
        text << readBasic<const char *>(message, type);
        break;
    case 'd':
        text << readBasic<double>(message, type);
        break;
    case 'i':
        text << readBasic<int>(message, type);
        break;
    case 'b':
        text << (readBasic<int>(message, type) != 0 ? "true" : "false");
        break;
    default: {
        const std::string contents = peeked != nullptr ? peeked : "";
        if (sd_bus_message_enter_container(message, type, contents.c_str()) <= 0)
            return "?";
        if (type == 'v')
            text << contentsText(message, "");
        else if (type == 'e')
            text << contentsText(message, "=");
        else if (type == 'r')
            text << '(' << contentsText(message, ", ") << ')';
        else
            text << (contents.front() == '{' ? '{' : '[') << contentsText(message, ", ")
                 << (contents.front() == '{' ? '}' : ']');
        sd_bus_message_exit_container(message);
    }
    }
    return text.str();
}

int keepReply(sd_bus_message *reply, void *context, sd_bus_error *)
{
    *static_cast<SdBusMessage *>(context) = SdBusMessage(sd_bus_message_ref(reply));
    return 0;
}

int keepSignal(sd_bus_message *signal, void *context, sd_bus_error *)
{
    static_cast<std::vector<std::string> *>(context)->push_back(contentsText(signal, ", "));
    return 0;
}

} // namespace

std::string BusCaller::call(const char *path, const char *interface, const char *member, const char *types, ...)
{
    sd_bus_message *message = nullptr;
    sd_bus_message_new_method_call(m_session.bus(), &message, bus_names::application, path, interface, member);
    const SdBusMessage call(message);
    va_list arguments;
    va_start(arguments, types);
    sd_bus_message_appendv(message, types, arguments);
    va_end(arguments);
    return send(message);
}

std::string BusCaller::send(sd_bus_message *call)
{
    SdBusMessage reply;
    sd_bus_slot *slot = nullptr;
    sd_bus_call_async(m_session.bus(), &slot, call, keepReply, &reply, patience * std::uint64_t{1000});
    const SdBusSlot owner(slot);
    if (!QTest::qWaitFor([&reply] { return reply != nullptr; }, patience))
        return {};
    if (const auto *error = sd_bus_message_get_error(reply.get()))
        return std::string(error->name) + ": " + (error->message != nullptr ? error->message : "");
    return contentsText(reply.get(), ", ");
}

const std::vector<std::string> &BusCaller::observe(const std::string &interface)
{
    m_match = m_session.install([this, rule = "type='signal',interface='" + interface + "'"](sd_bus *bus) {
        return addMatch(bus, rule, keepSignal, &m_signals);
    });
    return m_signals;
}

} // namespace ambertide
