#include "adapters/linux/displays/wlroots/GammaControl.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>
#include <wlr-gamma-control-client-protocol.h>

#include <limits>

namespace ambertide {

namespace {

constexpr std::uint32_t smallestTable = 2;
constexpr std::uint32_t largestTable = std::numeric_limits<std::uint16_t>::max();

/// A file that holds just these bytes, sealed against changes, with its offset at 0: some compositors read from the
/// present offset, and some refuse any other length. -1 when the system can make no file.
int makeFile(std::span<const std::uint16_t> levels)
{
    const int file = memfd_create("ambertide", MFD_CLOEXEC | MFD_ALLOW_SEALING);
    if (file < 0)
        return -1;
    const auto bytes = std::as_bytes(levels);
    if (pwrite(file, bytes.data(), bytes.size(), 0) == static_cast<ssize_t>(bytes.size()) &&
        fcntl(file, F_ADD_SEALS, F_SEAL_SEAL | F_SEAL_SHRINK | F_SEAL_GROW | F_SEAL_WRITE) == 0)
        return file;
    close(file);
    return -1;
}

} // namespace

GammaControl::GammaControl(zwlr_gamma_control_manager_v1 *manager, wl_output *output)
    : m_control(zwlr_gamma_control_manager_v1_get_gamma_control(manager, output))
{
    static constexpr zwlr_gamma_control_v1_listener listener{noteSize, noteFailure};
    if (!m_control || zwlr_gamma_control_v1_add_listener(m_control.get(), &listener, this) != 0)
        m_state = State::refused;
}

void GammaControl::noteSize(void *self, zwlr_gamma_control_v1 *, std::uint32_t size)
{
    auto &control = *static_cast<GammaControl *>(self);
    if (control.m_state != State::awaitingSize)
        return; // the protocol has it sent once
    const bool isPossible = size >= smallestTable && size <= largestTable;
    control.m_state = isPossible ? State::usable : State::tableless;
    control.m_size = isPossible ? static_cast<std::uint16_t>(size) : std::uint16_t{0};
}

void GammaControl::noteFailure(void *self, zwlr_gamma_control_v1 *)
{
    static_cast<GammaControl *>(self)->m_state = State::refused;
}

void GammaControl::show(const GammaTables &tables)
{
    if (m_state == State::usable)
        show(GammaRamp(tables, m_size));
}

void GammaControl::showIdentity()
{
    if (m_state == State::usable)
        show(GammaRamp::identity(m_size));
}

void GammaControl::show(const GammaRamp &ramp)
{
    if (m_shown == ramp)
        return;
    const int file = makeFile(ramp.levels());
    if (file < 0)
        return;
    zwlr_gamma_control_v1_set_gamma(m_control.get(), file);
    close(file);
    m_shown = ramp;
}

} // namespace ambertide
