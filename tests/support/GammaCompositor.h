#pragma once

#include <QTemporaryDir>

#include <array>
#include <atomic>
#include <cstdint>
#include <list>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

struct wl_client;
struct wl_display;
struct wl_global;
struct wl_resource;

namespace ambertide {

/// A Wayland compositor that has nothing but outputs whose gamma tables can be set, with a thread of its own. It is
/// called from one other thread.
class GammaCompositor
{
public:
    /// Whose habits it has with tables of the wrong length, and with those of a program that has left.
    enum class Kind { sway, niri, hyprland, withoutGammaControl };

    struct Output
    {
        std::uint32_t size = 0;           ///< levels in each table, as clients are told
        std::vector<std::uint16_t> shown; ///< red, green, blue; empty: the compositor's own
        std::array<double, 3> matrix{1, 1, 1};
        int writes = 0;
    };

    explicit GammaCompositor(Kind kind);
    ~GammaCompositor();
    GammaCompositor(const GammaCompositor &) = delete;
    GammaCompositor &operator=(const GammaCompositor &) = delete;

    /// A path. The constructor starts it.
    std::string socket() const { return m_folder.filePath(QStringLiteral("wayland")).toStdString(); }
    void stop();
    /// Without any outputs.
    void start();

    /// Its index, counted from the start. A refused one gives nobody its control.
    std::size_t addOutput(std::uint32_t tableSize, bool isRefused = false);
    void removeOutput(std::size_t index);
    Output output(std::size_t index);
    /// Ends every connection with a protocol error.
    void accuseEverybody();
    /// It answers nobody while this is held.
    std::unique_lock<std::mutex> freeze() { return std::unique_lock(m_lock); }

private:
    struct Head;
    struct Requests;

    void run();

    const Kind m_kind;
    const QTemporaryDir m_folder;
    std::mutex m_lock; ///< guards all below
    wl_display *m_display = nullptr;
    std::list<Head> m_heads; ///< removed ones included
    wl_resource *m_matrices = nullptr;
    std::atomic<bool> m_shouldStop = false;
    std::thread m_thread;
};

} // namespace ambertide
