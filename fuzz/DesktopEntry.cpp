#include "adapters/linux/desktop/DesktopEntry.h"

#include "Require.h"

using ambertide::DesktopEntry;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::string text(reinterpret_cast<const char *>(data), size);
    if (const auto entry = DesktopEntry::parse(text)) {
        require(!entry->program() || !entry->program()->empty());
        entry->boolean("Hidden");
    }
    if (text.find('\0') != std::string::npos)
        return 0;
    // Every text without NUL must come back whole from an entry that it was written into.
    const auto entry = DesktopEntry::parse("[Desktop Entry]\nExec=" + DesktopEntry::execArgument(text) +
                                           "\nTryExec=" + DesktopEntry::escaped(text) + "\n");
    require(entry && entry->string("TryExec") == text);
    require(text.empty() || entry->program() == text);
    return 0;
}
