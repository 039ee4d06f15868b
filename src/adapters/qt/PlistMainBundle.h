#pragma once

#include "ports/MainBundle.h"

#include <map>

namespace ambertide {

/// The bundle folder around the running program, with the text values of its `Contents/Info.plist`.
///
/// A missing, broken or oversized file reads as one without values. Immutable after construction; any thread.
class PlistMainBundle final : public MainBundle
{
public:
    /// `program` is the running executable, `<bundle>/Contents/MacOS/<name>`.
    explicit PlistMainBundle(const std::filesystem::path &program);

    std::filesystem::path path() const override { return m_path; }
    std::optional<std::string> information(std::string_view key) const override;
    std::optional<std::string> presentInformation(std::string_view key) const override;

private:
    std::filesystem::path m_path;
    std::map<std::string, std::string, std::less<>> m_information;
};

} // namespace ambertide
