#pragma once

#include "adapters/linux/displays/shared/GuardianMessage.h"

#include <optional>

namespace ambertide {

/// The guardian's end of its channel to the application. One thread.
class GuardianChannel
{
public:
    /// `descriptor` stays the caller's.
    explicit GuardianChannel(int descriptor) : m_descriptor(descriptor) {}

    int descriptor() const { return m_descriptor; }
    /// The last message from the application; 0 before the first.
    GuardianMessage told() const { return m_told; }

    /// Waits for one message. False once the application has ended.
    bool receive();
    /// Waits for the application's end. True when it was tinting then.
    bool awaitEnd();

private:
    const int m_descriptor;
    GuardianMessage m_told = 0;
};

} // namespace ambertide
