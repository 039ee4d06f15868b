#include "adapters/linux/displays/DisplayBackends.h"

#include "adapters/linux/displays/mutter/MutterBackend.h"
#include "adapters/linux/displays/randr/RandrBackend.h"

#include <array>

namespace ambertide {

namespace {

/// Stands in where nothing can tint.
class NoDisplays final : public DisplayBackend
{
public:
    std::span<const DisplayIdentifier> displays() const override { return {}; }
    bool write(std::span<const DisplayIdentifier>, const GammaTables &, Wait) override { return true; }
    void restore() override {}
};

struct Kind
{
    std::string_view name; ///< as it is chosen by
    /// Why this kind cannot serve, a sentence for a person; empty when it can.
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

std::string mutterRefusal(const DisplaySession &) { return MutterBackend::refusal(); }

std::unique_ptr<DisplayBackend> createMutter(const DisplaySession &session)
{
    return std::make_unique<MutterBackend>(session.guardian);
}

constexpr std::array kinds{
    Kind{"randr", randrRefusal, createRandr},
    Kind{"mutter", mutterRefusal, createMutter},
};

} // namespace

ChosenDisplayBackend chooseDisplayBackend(const DisplaySession &session, std::string_view choice)
{
    ChosenDisplayBackend chosen{std::make_unique<NoDisplays>(), {}};
    if (choice == "none")
        return chosen;
    bool isKnown = choice.empty();
    for (const auto &kind : kinds) {
        if (!choice.empty() && choice != kind.name)
            continue;
        isKnown = true;
        const auto refusal = kind.refusal(session);
        if (refusal.empty())
            return {kind.create(session), {}};
        chosen.refusals.push_back("Displays cannot be tinted by " + std::string(kind.name) + ": " + refusal + ".");
    }
    if (!isKnown)
        chosen.refusals.push_back("AMBERTIDE_DISPLAY names no way of tinting displays: " + std::string(choice) + ".");
    return chosen;
}

} // namespace ambertide
