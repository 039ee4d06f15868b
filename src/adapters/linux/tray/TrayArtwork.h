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

    /// The folder in which hosts find the name; empty when they find it without being told, because some hosts recolour
    /// only such icons.
    std::string themePath() const;

    /// In the drawing's own colour, which stands on dark and light panels, at the usual sizes. Empty when the drawing
    /// cannot be read.
    std::vector<QImage> images() const;

private:
    std::filesystem::path m_iconsFolder;
};

} // namespace ambertide
