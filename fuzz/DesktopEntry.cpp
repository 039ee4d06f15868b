#include "platform/linux/DesktopEntry.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

using ambertide::DesktopEntry;

namespace {

void require(bool condition)
{
    if (!condition)
        std::abort();
}

/// Every text without NUL must come back whole from an entry that it was written into.
void writeAndRead(const std::string &text)
{
    const auto entry = DesktopEntry::parse("[Desktop Entry]\nExec=" + DesktopEntry::execArgument(text) +
                                           "\nTryExec=" + DesktopEntry::escaped(text) + "\n");
    require(entry.has_value());
    require(entry->string("TryExec") == text);
    if (!text.empty())
        require(entry->program() == text);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::string text(reinterpret_cast<const char *>(data), size);
    if (const auto entry = DesktopEntry::parse(text)) {
        require(!entry->program() || !entry->program()->empty());
        for (const auto key : {"Hidden", "X-GNOME-Autostart-enabled", "Exec", "TryExec"}) {
            entry->boolean(key);
            entry->string(key);
        }
    }
    if (text.find('\0') == std::string::npos)
        writeAndRead(text);
    return 0;
}
