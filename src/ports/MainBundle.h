#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace ambertide {

/// Port: the bundle folder that this program was started from, and what its information file says.
class MainBundle
{
public:
    virtual ~MainBundle() = default;

    virtual std::filesystem::path path() const = 0;
    /// The value of "CFBundleIdentifier"; nothing when there is no readable information file.
    std::optional<std::string> identifier() const { return information("CFBundleIdentifier"); }
    /// A text value of the information file; nothing when absent.
    virtual std::optional<std::string> information(std::string_view key) const = 0;
    /// The same, read anew: an installation may have replaced the file since this program was started.
    virtual std::optional<std::string> presentInformation(std::string_view key) const { return information(key); }
};

} // namespace ambertide
