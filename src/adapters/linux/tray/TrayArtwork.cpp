#include "adapters/linux/tray/TrayArtwork.h"

#include <QPainter>
#include <QStandardPaths>
#include <QSvgRenderer>

#include <utility>

namespace ambertide {

namespace {

std::filesystem::path drawingIn(const std::filesystem::path &iconsFolder)
{
    return iconsFolder / "hicolor/symbolic/apps" / (std::string(TrayArtwork::iconName) + ".svg");
}

} // namespace

TrayArtwork::TrayArtwork(std::filesystem::path iconsFolder) : m_iconsFolder(std::move(iconsFolder)) {}

std::string TrayArtwork::themePath() const
{
    const auto installed = QString::fromStdString(drawingIn("icons").string());
    const bool isInstalled = !QStandardPaths::locate(QStandardPaths::GenericDataLocation, installed).isEmpty();
    return isInstalled ? std::string() : m_iconsFolder.string();
}

std::vector<QImage> TrayArtwork::images() const
{
    QSvgRenderer drawing(QString::fromStdString(drawingIn(m_iconsFolder).string()));
    std::vector<QImage> images;
    for (const int size : {16, 22, 24, 32, 48, 64}) {
        if (!drawing.isValid())
            break;
        auto &image = images.emplace_back(size, size, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        QPainter painter(&image);
        drawing.render(&painter);
    }
    return images;
}

} // namespace ambertide
