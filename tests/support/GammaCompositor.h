#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <deque>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

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
        GammaCompositor &compositor;
        std::uint32_t size;     ///< levels in each table, as clients are told
        bool isCalibrated;      ///< tables are withheld for the sake of a colour profile
        bool isRefused = false; ///< nobody gets the control
        wl_global *global = nullptr;
        wl_resource *control = nullptr;
        std::vector<std::uint16_t> shown{}; ///< red, green, blue; empty: the compositor's own
        int writes = 0;
        std::array<double, 3> nextMatrix{1, 1, 1};
        std::array<double, 3> matrix{1, 1, 1};
    };

    GammaCompositor(Kind kind, const std::string &socket);
    ~GammaCompositor();
    GammaCompositor(const GammaCompositor &) = delete;
    GammaCompositor &operator=(const GammaCompositor &) = delete;

    /// Its index.
    std::size_t addOutput(std::uint32_t tableSize, bool isCalibrated = false);
    void removeOutput(std::size_t index);
    Output output(std::size_t index);
    /// Ends every connection with a protocol error.
    void accuseEverybody();
    /// It answers nobody while this is held.
    std::unique_lock<std::mutex> freeze() { return std::unique_lock(m_lock); }

private:
    struct Requests;

    void run();

    const Kind m_kind;
    std::mutex m_lock; ///< guards all below
    wl_display *const m_display;
    std::deque<Output> m_outputs; ///< removed ones included
    std::atomic<bool> m_shouldStop = false;
    std::thread m_thread;
};

} // namespace ambertide
