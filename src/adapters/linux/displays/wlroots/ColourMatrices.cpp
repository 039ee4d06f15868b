#include "adapters/linux/displays/wlroots/ColourMatrices.h"

#include <hyprland-ctm-control-client-protocol.h>
#include <wayland-client.h>

#include <algorithm>
#include <utility>

namespace ambertide {

ColourMatrices::ColourMatrices(wl_registry *registry, std::uint32_t global, std::uint32_t version)
    : m_manager(static_cast<hyprland_ctm_control_manager_v1 *>(
          wl_registry_bind(registry, global, &hyprland_ctm_control_manager_v1_interface,
                           std::min<std::uint32_t>(version, HYPRLAND_CTM_CONTROL_MANAGER_V1_BLOCKED_SINCE_VERSION))))
{
    static constexpr hyprland_ctm_control_manager_v1_listener listener{noteBlocked};
    if (m_manager)
        hyprland_ctm_control_manager_v1_add_listener(m_manager.get(), &listener, this);
}

void ColourMatrices::noteBlocked(void *self, hyprland_ctm_control_manager_v1 *)
{
    static_cast<ColourMatrices *>(self)->m_isBlocked = true;
}

void ColourMatrices::show(wl_output *output, const GammaTables &tables, std::optional<Factors> &shown)
{
    const Factors factors{tables.red.back(), tables.green.back(), tables.blue.back()};
    if (!m_manager || m_isBlocked || shown == factors)
        return;
    const auto level = [&factors](std::size_t channel) { return wl_fixed_from_double(factors[channel]); };
    hyprland_ctm_control_manager_v1_set_ctm_for_output(m_manager.get(), output, level(0), 0, 0, 0, level(1), 0, 0, 0,
                                                       level(2));
    shown = factors;
    m_hasChanges = true;
}

void ColourMatrices::commit()
{
    if (std::exchange(m_hasChanges, false))
        hyprland_ctm_control_manager_v1_commit(m_manager.get());
}

} // namespace ambertide
