#include "update/VersionComparator.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

using ambertide::compareVersions;

namespace {

void require(bool condition)
{
    if (!condition)
        std::abort();
}

} // namespace

/// Three versions, one a line, must have an order: the same in both directions, and never a circle.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::string_view text(reinterpret_cast<const char *>(data), size);
    const auto firstEnd = text.find('\n');
    const auto secondEnd = firstEnd == text.npos ? text.npos : text.find('\n', firstEnd + 1);
    if (secondEnd == text.npos)
        return 0;
    const auto first = text.substr(0, firstEnd);
    const auto second = text.substr(firstEnd + 1, secondEnd - firstEnd - 1);
    const auto third = text.substr(secondEnd + 1);

    const auto order = compareVersions(first, second);
    require(compareVersions(first, first) == 0);
    require((order < 0) == (compareVersions(second, first) > 0) &&
            (order == 0) == (compareVersions(second, first) == 0));
    if (order <= 0 && compareVersions(second, third) <= 0)
        require(compareVersions(first, third) <= 0);
    if (order == 0)
        require(compareVersions(first, third) == compareVersions(second, third));
    return 0;
}
