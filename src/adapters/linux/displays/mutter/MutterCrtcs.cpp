#include "adapters/linux/displays/mutter/MutterCrtcs.h"

namespace ambertide {

namespace {

constexpr int mostRefusals = 2;
constexpr std::uint64_t microsecondsForReply = 2'000'000;
/// Foreign tables that are further apart than some passes are no contest.
constexpr std::chrono::seconds foreignTablesApart{10};

SdBusSlot send(sd_bus *bus, const SdBusMessage &call, sd_bus_message_handler_t handler, void *context)
{
    sd_bus_slot *slot = nullptr;
    if (call)
        sd_bus_call_async(bus, &slot, call.get(), handler, context, microsecondsForReply);
    return SdBusSlot(slot);
}

} // namespace

void MutterCrtcs::reload()
{
    m_mustTellReload = true;
    m_serial.reset();
    forgetShown();
    for (auto &[identifier, crtc] : m_crtcs)
        crtc.size.reset();
    read();
}

void MutterCrtcs::forgetShown()
{
    for (auto &[identifier, crtc] : m_crtcs) {
        crtc.call.reset(); // mutter carries it out, perhaps before the others' tables: do not wait for its reply
        crtc.shown.reset();
        crtc.foreignTables = 0;
    }
}

void MutterCrtcs::show(std::span<const DisplayIdentifier> crtcs, const GammaTables &tables)
{
    m_refusals = 0;
    if (!m_serial && !m_reading)
        read();
    for (const auto identifier : crtcs) {
        const auto found = m_crtcs.find(identifier);
        if (found == m_crtcs.end())
            continue;
        found->second.wanted = tables;
        found->second.mustBeLookedAt = true;
        proceed(found->second);
    }
}

void MutterCrtcs::clear()
{
    forgetShown();
    for (auto &[identifier, crtc] : m_crtcs)
        crtc.wanted.reset();
}

void MutterCrtcs::read()
{
    if (m_reading) {
        m_mustReadAgain = true;
        return;
    }
    m_mustReadAgain = false;
    const auto handler = [](sd_bus_message *reply, void *context, sd_bus_error *) {
        static_cast<MutterCrtcs *>(context)->takeResources(reply);
        return 0;
    };
    m_reading = send(m_bus, display_config::getResources(m_bus), handler, this);
}

void MutterCrtcs::takeResources(sd_bus_message *reply)
{
    m_reading.reset();
    if (m_mustReadAgain)
        return read();
    const auto resources = display_config::readResources(reply);
    if (!resources)
        return;
    m_serial = resources->serial;
    m_active.clear();
    std::map<std::uint32_t, Crtc> crtcs;
    for (const auto &[identifier, isActive, connector] : resources->crtcs) {
        if (auto known = m_crtcs.extract(identifier))
            crtcs.insert(std::move(known));
        else
            crtcs.emplace(identifier, Crtc{.owner = *this, .identifier = identifier});
        if (isActive)
            m_active.push_back(identifier);
    }
    m_crtcs = std::move(crtcs);
    m_hasReloaded = std::exchange(m_mustTellReload, false) || m_hasReloaded;
    for (auto &[identifier, crtc] : m_crtcs)
        proceed(crtc);
}

/// Makes the next call that the CRTC needs, if one can be made now.
void MutterCrtcs::proceed(Crtc &crtc)
{
    if (!crtc.wanted || crtc.call || !m_serial || m_refusals >= mostRefusals)
        return;
    if (!crtc.size)
        return ask(crtc);
    GammaRamp ramp(*crtc.wanted, *crtc.size);
    if (crtc.shown != ramp)
        write(crtc, std::move(ramp));
    else if (crtc.mustBeLookedAt)
        ask(crtc);
}

void MutterCrtcs::ask(Crtc &crtc)
{
    const auto handler = [](sd_bus_message *reply, void *context, sd_bus_error *) {
        auto &asked = *static_cast<Crtc *>(context);
        asked.owner.takeGamma(asked, reply);
        return 0;
    };
    crtc.call = send(m_bus, display_config::getCrtcGamma(m_bus, *m_serial, crtc.identifier), handler, &crtc);
}

void MutterCrtcs::write(Crtc &crtc, GammaRamp ramp)
{
    const auto handler = [](sd_bus_message *reply, void *context, sd_bus_error *) {
        auto &written = *static_cast<Crtc *>(context);
        written.owner.takeWritten(written, reply);
        return 0;
    };
    crtc.call = send(m_bus, display_config::setCrtcGamma(m_bus, *m_serial, crtc.identifier, ramp), handler, &crtc);
    crtc.mustBeLookedAt = false;
    crtc.sent = std::move(ramp);
}

void MutterCrtcs::takeGamma(Crtc &crtc, sd_bus_message *reply)
{
    crtc.call.reset();
    const auto gamma = display_config::readGamma(reply);
    if (!gamma)
        return takeRefusal();
    m_refusals = 0;
    crtc.mustBeLookedAt = false;
    if (!crtc.size)
        crtc.size = display_config::tableSize(*gamma);
    if (crtc.shown && !display_config::isSame(*gamma, *crtc.shown)) {
        crtc.shown.reset();
        const auto now = std::chrono::steady_clock::now();
        if (now - std::exchange(crtc.lastForeign, now) > foreignTablesApart)
            crtc.foreignTables = 0;
        m_isContested = m_isContested || ++crtc.foreignTables >= mostForeignTables;
    }
    proceed(crtc);
}

void MutterCrtcs::takeWritten(Crtc &crtc, sd_bus_message *reply)
{
    crtc.call.reset();
    if (sd_bus_message_is_method_error(reply, nullptr) != 0)
        return takeRefusal();
    m_refusals = 0;
    crtc.shown = std::exchange(crtc.sent, std::nullopt);
    proceed(crtc);
}

/// The serial is stale, or the CRTC has gone. If there is no serial left, the CRTCs are being read again already.
void MutterCrtcs::takeRefusal()
{
    if (!m_serial)
        return;
    ++m_refusals;
    m_serial.reset();
    read();
}

} // namespace ambertide
