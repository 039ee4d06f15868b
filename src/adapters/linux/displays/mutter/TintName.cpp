#include "adapters/linux/displays/mutter/TintName.h"

#include <charconv>

namespace ambertide::tint_name {

namespace {

int ignoreReply(sd_bus_message *, void *, sd_bus_error *) { return 0; }

} // namespace

void acquire(sd_bus *bus)
{
    sd_bus_request_name_async(bus, nullptr, name,
                              SD_BUS_NAME_ALLOW_REPLACEMENT | SD_BUS_NAME_REPLACE_EXISTING | SD_BUS_NAME_QUEUE,
                              ignoreReply, nullptr);
}

void release(sd_bus *bus) { sd_bus_release_name_async(bus, nullptr, name, ignoreReply, nullptr); }

GuardianMessage claimOf(std::string_view uniqueName)
{
    // A bus numbers its connections, as in ":1.42".
    const auto digits = uniqueName.substr(uniqueName.rfind('.') + 1);
    GuardianMessage number = 0;
    std::from_chars(digits.data(), digits.data() + digits.size(), number);
    return number + 1;
}

} // namespace ambertide::tint_name
