#pragma once

#include "adapters/linux/bus/DBusSession.h"
#include "ports/HapticPerformer.h"

namespace ambertide {

/// Asks feedbackd, the feedback service of phones and tablets, for what its theme has for a pressed button. Where it is
/// not running nothing happens: it is neither started nor waited for.
class FeedbackdHapticPerformer final : public HapticPerformer
{
public:
    /// `session` must outlive this.
    explicit FeedbackdHapticPerformer(DBusSession &session) : m_session(session) {}

    void performLevelChange() override;

private:
    DBusSession &m_session;
};

} // namespace ambertide
