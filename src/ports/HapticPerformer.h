#pragma once

namespace ambertide {

/// Port: short feedback that is felt, where the machine has the hardware for it. Main thread.
class HapticPerformer
{
public:
    virtual ~HapticPerformer() = default;

    /// A value has crossed a detent or a switch has been thrown. Returns at once, also where nothing is felt.
    virtual void performLevelChange() = 0;
};

} // namespace ambertide
