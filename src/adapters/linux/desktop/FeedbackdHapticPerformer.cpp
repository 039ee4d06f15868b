#include "adapters/linux/desktop/FeedbackdHapticPerformer.h"

#include "adapters/linux/bus/BusNames.h"

namespace ambertide {

namespace {

/// Event Naming Specification of feedbackd.
constexpr char event[] = "button-pressed";
/// Felt, not heard.
constexpr char profile[] = "quiet";
/// Feedback that goes on by itself is played once.
constexpr int onlyOnce = -1;

} // namespace

void FeedbackdHapticPerformer::performLevelChange()
{
    sd_bus_message *message = nullptr;
    if (m_session.bus() == nullptr ||
        sd_bus_message_new_method_call(m_session.bus(), &message, "org.sigxcpu.Feedback", "/org/sigxcpu/Feedback",
                                       "org.sigxcpu.Feedback", "TriggerFeedback") < 0)
        return;
    const SdBusMessage owner(message);
    sd_bus_message_set_expect_reply(message, 0);
    sd_bus_message_set_auto_start(message, 0);
    if (sd_bus_message_append(message, "ssa{sv}i", bus_names::application, event, 1, "profile", "s", profile,
                              onlyOnce) >= 0)
        m_session.send(owner);
}

} // namespace ambertide
