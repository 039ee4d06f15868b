#pragma once

namespace ambertide {

/// Port: short feedback that is felt, where the machine has the hardware for it. Main thread.
class HapticPerformer
{
public:
    virtual ~HapticPerformer() = default;

    /// For a value that crosses a detent or a switch that is thrown. Returns at once, even where nothing can be felt.
    virtual void performLevelChange() = 0;
};

} // namespace ambertide
