#pragma once

#include "adapters/linux/bus/DBusSession.h"
#include "ports/HapticPerformer.h"

namespace ambertide {

/// Has feedbackd, the feedback service of phones and tablets, do what its theme says for a pressed button. Nothing is
/// felt while it does not run: it is neither started nor waited for.
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
