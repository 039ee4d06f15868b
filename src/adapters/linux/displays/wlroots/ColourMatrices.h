#pragma once

#include "adapters/linux/displays/wlroots/WaylandConnection.h"
#include "ports/DisplayServices.h"

#include <array>
#include <optional>

namespace ambertide {

/// Tints outputs by a colour matrix (hyprland_ctm_control_manager_v1), which can reproduce the white point of tables,
/// to within 1/256, but no curve. It is applied on top of any tables. Hyprland takes matrices from one program only,
/// and puts its own back when this object is destroyed. One thread at a time.
class ColourMatrices
{
public:
    /// The factors of red, green and blue that an output was given last.
    using Factors = std::array<double, 3>;

    /// Binds the global of that name and version.
    ColourMatrices(wl_registry *registry, std::uint32_t global, std::uint32_t version);
    ColourMatrices(const ColourMatrices &) = delete;
    ColourMatrices &operator=(const ColourMatrices &) = delete;

    /// Queues a matrix for the white point of the tables, unless `shown` says that the output has it. Takes effect with
    /// commit().
    void show(wl_output *output, const GammaTables &tables, std::optional<Factors> &shown);
    /// Queues a request that makes all matrices queued since the last commit take effect together.
    void commit();
    /// Whether another program sets matrices, so that this object never will.
    bool isBlocked() const { return m_isBlocked; }

private:
    static void noteBlocked(void *self, hyprland_ctm_control_manager_v1 *);

    WaylandObject<hyprland_ctm_control_manager_v1> m_manager;
    bool m_hasChanges = false;
    bool m_isBlocked = false;
};

} // namespace ambertide
