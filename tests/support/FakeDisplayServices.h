#pragma once

#include "ports/DisplayServices.h"

#include <mutex>
#include <utility>

namespace ambertide {

/// Records what is asked of it. Safe from any thread, as the port demands.
class FakeDisplayServices final : public DisplayServices
{
public:
    struct Write
    {
        std::vector<DisplayIdentifier> displays;
        GammaTables tables;
        bool isRestore = false;
    };

    std::vector<DisplayIdentifier> displays = {1, 2};
    std::vector<std::optional<GammaTables>> rampTargets;

    std::vector<DisplayIdentifier> activeDisplays() override { return displays; }
    void setTransferTables(std::span<const DisplayIdentifier> addressed, const GammaTables &tables) override
    {
        const std::scoped_lock lock(m_lock);
        m_writes.push_back({{addressed.begin(), addressed.end()}, tables, false});
    }
    void restoreSystemColours() override
    {
        const std::scoped_lock lock(m_lock);
        m_writes.push_back({displays, {}, true});
    }

    void beginRamp(const std::optional<GammaTables> &target) override { rampTargets.push_back(target); }

    /// What was written since the last call.
    std::vector<Write> takeWrites()
    {
        const std::scoped_lock lock(m_lock);
        return std::exchange(m_writes, {});
    }

private:
    std::mutex m_lock;
    std::vector<Write> m_writes;
};

} // namespace ambertide
