#pragma once

#include "ports/DisplayServices.h"

namespace ambertide {

/// Stands in where nothing can tint: there are no displays.
class UnavailableDisplayServices final : public DisplayServices
{
public:
    std::vector<DisplayIdentifier> activeDisplays() override { return {}; }
    void setTransferTables(std::span<const DisplayIdentifier>, const GammaTables &) override {}
    void restoreSystemColours() override {}
};

} // namespace ambertide
