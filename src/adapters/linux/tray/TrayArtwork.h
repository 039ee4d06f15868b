#pragma once

#include <QImage>

#include <filesystem>
#include <string>
#include <vector>

namespace ambertide {

/// The tray icon's drawing, by name for the hosts that recolour it and as pixels for the others.
class TrayArtwork
{
public:
    static constexpr char iconName[] = "me.tovanu.Ambertide-symbolic";

    /// `iconsFolder` holds the theme folder "hicolor" that comes with the application.
    explicit TrayArtwork(std::filesystem::path iconsFolder);

    /// The icon folder to tell hosts, in which they find the name. Empty when the icon is installed among the system's,
    /// where they find it anyway: some hosts recolour only those.
    std::string themePath() const;

    /// The drawing at the usual sizes, in its own colour, which is visible on dark and light panels. Empty when it
    /// cannot be read.
    std::vector<QImage> images() const;

private:
    std::filesystem::path m_iconsFolder;
};

} // namespace ambertide
