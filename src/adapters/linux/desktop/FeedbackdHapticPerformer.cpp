#include "adapters/linux/desktop/FeedbackdHapticPerformer.h"

#include "adapters/linux/bus/BusNames.h"
#include "adapters/linux/bus/SdBusWriter.h"

namespace ambertide {

namespace {

/// Event Naming Specification of feedbackd.
constexpr char event[] = "button-pressed";
/// A profile that vibrates without a sound.
constexpr char profile[] = "quiet";
/// Plays the feedback once, even if the theme repeats it.
constexpr std::int32_t onlyOnce = -1;

} // namespace

void FeedbackdHapticPerformer::performLevelChange()
{
    m_session.send(SdBusWriter::call(m_session.bus(), "org.sigxcpu.Feedback", "/org/sigxcpu/Feedback",
                                     "org.sigxcpu.Feedback", "TriggerFeedback")
                       .withoutStarting()
                       .add(bus_names::application, event, UserInfo{{"profile", profile}}, onlyOnce)
                       .take());
}

} // namespace ambertide
