#include "adapters/linux/displays/mutter/VideoCardGamma.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <fstream>
#include <span>
#include <string_view>
#include <system_error>
#include <vector>

namespace ambertide {

namespace {

using Bytes = std::vector<unsigned char>;

constexpr std::size_t headerSize = 128;  // ICC.1, 7.2
constexpr std::size_t tagEntrySize = 12; // ICC.1, 7.3
constexpr std::uint32_t mostTags = 1000;
constexpr std::size_t channels = 3;
constexpr std::size_t tableStart = 18; // after the type's signature, four reserved bytes, the kind and three sizes
constexpr std::size_t formulaStart = 12;
constexpr std::size_t largestTag = tableStart + channels * 65535 * 2;

/// Big-endian. `at` is inside.
std::uint32_t number(const Bytes &bytes, std::size_t at, std::size_t size)
{
    std::uint32_t value = 0;
    for (const auto byte : std::span(bytes).subspan(at, size))
        value = value << 8U | byte;
    return value;
}

/// What there is of `size` bytes at `offset`.
Bytes read(std::ifstream &file, std::size_t offset, std::size_t size)
{
    Bytes bytes(size);
    file.clear();
    file.seekg(static_cast<std::streamoff>(offset));
    file.read(reinterpret_cast<char *>(bytes.data()), static_cast<std::streamsize>(size));
    bytes.resize(static_cast<std::size_t>(std::max<std::streamsize>(file.gcount(), 0)));
    return bytes;
}

Bytes readTag(std::ifstream &file, std::string_view name)
{
    const auto start = read(file, 0, headerSize + 4);
    if (start.size() < headerSize + 4 || !std::ranges::equal(std::span(start).subspan(36, 4), std::string_view("acsp")))
        return {};
    const auto count = std::min(number(start, headerSize, 4), mostTags);
    const auto entries = read(file, headerSize + 4, count * tagEntrySize);
    for (std::size_t at = 0; at + tagEntrySize <= entries.size(); at += tagEntrySize) {
        if (std::ranges::equal(std::span(entries).subspan(at, 4), name))
            return read(file, number(entries, at + 4, 4),
                        std::min<std::size_t>(number(entries, at + 8, 4), largestTag));
    }
    return {};
}

/// In straight lines between its entries.
bool readTable(const Bytes &tag, GammaTables::Table &table, std::size_t channel)
{
    const std::size_t count = number(tag, 14, 2);
    std::size_t width = number(tag, 16, 2);
    if (count == 256 && width == 1 && tag.size() == 1576) // a known maker of profiles writes a wrong width
        width = 2;
    if (number(tag, 12, 2) != channels || count < 2 || width < 1 || width > 2 ||
        tag.size() < tableStart + channels * count * width)
        return false;
    const double largest = width == 1 ? 255 : 65535;
    const auto entry = [&](std::size_t i) {
        return number(tag, tableStart + (channel * count + i) * width, width) / largest;
    };
    for (std::size_t i = 0; i < table.size(); ++i) {
        const double position = static_cast<double>(i * (count - 1)) / (GammaTables::size - 1);
        const auto segment = std::min(static_cast<std::size_t>(position), count - 2);
        const double lower = entry(segment);
        table[i] = static_cast<float>(lower + (entry(segment + 1) - lower) * (position - static_cast<double>(segment)));
    }
    return true;
}

/// The smallest level, the largest one, and an exponent between.
bool readFormula(const Bytes &tag, GammaTables::Table &table, std::size_t channel)
{
    if (tag.size() < formulaStart + channels * 12)
        return false;
    const auto parameter = [&](std::size_t index) {
        return static_cast<std::int32_t>(number(tag, formulaStart + channel * 12 + index * 4, 4)) / 65536.0;
    };
    const double gamma = parameter(0);
    const double smallest = parameter(1);
    const double largest = parameter(2);
    if (gamma <= 0 || smallest < 0 || largest > 1 || smallest >= largest)
        return false;
    for (std::size_t i = 0; i < table.size(); ++i) {
        const double in = static_cast<double>(i) / (GammaTables::size - 1);
        table[i] = static_cast<float>(smallest + (largest - smallest) * std::pow(in, gamma));
    }
    return true;
}

} // namespace

std::optional<GammaTables> readVideoCardGamma(const std::filesystem::path &profile)
{
    std::error_code error;
    if (!std::filesystem::is_regular_file(profile, error))
        return std::nullopt;
    std::ifstream file(profile, std::ios::binary);
    const auto tag = readTag(file, "vcgt");
    if (tag.size() < tableStart)
        return std::nullopt;
    const auto kind = number(tag, 8, 4);
    GammaTables tables;
    std::size_t channel = 0;
    for (auto *const table : {&tables.red, &tables.green, &tables.blue}) {
        const bool isRead = kind == 0   ? readTable(tag, *table, channel)
                            : kind == 1 ? readFormula(tag, *table, channel)
                                        : false;
        if (!isRead)
            return std::nullopt;
        ++channel;
    }
    return tables;
}

} // namespace ambertide
