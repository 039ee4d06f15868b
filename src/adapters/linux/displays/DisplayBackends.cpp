#include "adapters/linux/displays/DisplayBackends.h"

#include "adapters/linux/displays/kwin/KWinBackend.h"
#include "adapters/linux/displays/mutter/MutterBackend.h"
#include "adapters/linux/displays/randr/RandrBackend.h"
#include "adapters/linux/displays/wlroots/WlrootsBackend.h"

#include <array>
#include <utility>

namespace ambertide {

namespace {

/// Stands in where nothing can tint.
class NoDisplays final : public DisplayBackend
{
public:
    explicit NoDisplays(std::string refusal) : m_refusal(std::move(refusal)) {}

    std::span<const DisplayIdentifier> displays() const override { return {}; }
    bool write(std::span<const DisplayIdentifier>, const GammaTables &, Wait) override { return true; }
    void restore() override {}
    std::optional<TintRefusal> tintRefusal() const override
    {
        return TintRefusal{TintRefusal::Reason::Desktop, m_refusal};
    }

private:
    const std::string m_refusal;
};

struct Kind
{
    std::string_view name; ///< by which it can be chosen
    /// Why this kind cannot tint the session, a phrase for the user; empty when it can.
    std::string (*refusal)(const DisplaySession &session);
    std::unique_ptr<DisplayBackend> (*create)(const DisplaySession &session);
};

std::string randrRefusal(const DisplaySession &session)
{
    if (!session.waylandDisplay.empty())
        return "an X server shows no tint in a Wayland session";
    return session.x11Display.empty() ? "DISPLAY is not set" : "";
}

std::unique_ptr<DisplayBackend> createRandr(const DisplaySession &session)
{
    return std::make_unique<RandrBackend>(session.x11Display, session.guardian);
}

std::string wlrootsRefusal(const DisplaySession &session)
{
    return session.waylandDisplay.empty() ? "WAYLAND_DISPLAY is not set"
                                          : WlrootsBackend::refusal(session.waylandDisplay);
}

std::unique_ptr<DisplayBackend> createWlroots(const DisplaySession &session)
{
    return std::make_unique<WlrootsBackend>(session.waylandDisplay, session.guardian);
}

std::string mutterRefusal(const DisplaySession &) { return MutterBackend::refusal(); }

std::unique_ptr<DisplayBackend> createMutter(const DisplaySession &session)
{
    return std::make_unique<MutterBackend>(session.guardian);
}

std::string kwinRefusal(const DisplaySession &) { return KWinBackend::refusal(); }

std::unique_ptr<DisplayBackend> createKWin(const DisplaySession &session)
{
    return std::make_unique<KWinBackend>(session.guardian);
}

/// In the order in which they are tried. The first takes X11 sessions only, so GNOME and Plasma on X11 are tinted like
/// any other X server.
constexpr std::array kinds{
    Kind{"randr", randrRefusal, createRandr},
    Kind{"wlroots", wlrootsRefusal, createWlroots},
    Kind{"mutter", mutterRefusal, createMutter},
    Kind{"kwin", kwinRefusal, createKWin},
};

} // namespace

ChosenDisplayBackend chooseDisplayBackend(const DisplaySession &session, std::string_view choice)
{
    std::string reasons;
    for (const auto &kind : kinds) {
        if (!choice.empty() && choice != kind.name)
            continue;
        const auto refusal = kind.refusal(session);
        if (refusal.empty())
            return {kind.create(session), {}};
        reasons += (reasons.empty() ? "" : "; ") + std::string(kind.name) + ": " + refusal;
    }
    const auto refusal = reasons.empty()
                             ? "AMBERTIDE_DISPLAY names no way of tinting displays: " + std::string(choice) + "."
                             : "Displays cannot be tinted here (" + reasons +
                                   "). They can on X11, GNOME, Plasma, and Wayland compositors with wlr-gamma-control, "
                                   "such as Sway.";
    // Whoever chose "none" needs no explanation.
    return {std::make_unique<NoDisplays>(refusal), choice == "none" ? std::string() : refusal};
}

} // namespace ambertide
