#include "cli/AmbertideCLI.h"

#include "protocol/Notifications.h"

#include <algorithm>
#include <charconv>
#include <optional>

namespace ambertide {

namespace {

constexpr int coldest = 6500;
constexpr int warmest = 1000;

constexpr std::string_view usage = "Usage: ambertide set <temperature>\n"
                                   "       ambertide get\n";

constexpr std::string_view details = "\n"
                                     "Shows or changes the color temperature of the running Ambertide.\n"
                                     "\n"
                                     "Commands:\n"
                                     "  set <temperature>  tint every display and switch the schedule off;\n"
                                     "                     whole kelvin, from 1000 (warmest) to 6500 (neutral)\n"
                                     "  get                print the present temperature in kelvin\n"
                                     "\n"
                                     "Options:\n"
                                     "  -h, --help         show this help\n"
                                     "      --version      show the version\n"
                                     "\n"
                                     "Exit status: 0 done, 1 could not be done, 2 wrong usage.\n";

AmbertideCLI::Result refuse(std::string_view reason)
{
    return {AmbertideCLI::wrongUsage, {}, "ambertide: " + std::string(reason) + "\n" + std::string(usage)};
}

AmbertideCLI::Result fail(std::string_view reason)
{
    return {AmbertideCLI::failure, {}, "ambertide: " + std::string(reason) + "\n"};
}

/// Takes digits only: no sign, space, fraction or unit.
std::optional<int> parseTemperature(std::string_view text)
{
    int kelvin = 0;
    const auto *end = text.data() + text.size();
    const auto parsed = std::from_chars(text.data(), end, kelvin);
    if (parsed.ec != std::errc() || parsed.ptr != end || kelvin < warmest || kelvin > coldest)
        return std::nullopt;
    return kelvin;
}

/// Why the displays cannot be tinted; empty if they can.
std::string refusalIn(const Notification &response)
{
    const auto &userInfo = response.userInfo;
    const auto found = userInfo ? userInfo->find(notifications::refusalKey) : UserInfo::const_iterator();
    if (!userInfo || found == userInfo->end())
        return {};
    const auto *const line = std::get_if<std::string>(&found->second);
    std::string printable = line ? *line : "displays cannot be tinted";
    std::erase_if(printable, [](unsigned char character) { return character < ' '; });
    return printable;
}

AmbertideCLI::Result describe(ApplicationConnection::Outcome outcome)
{
    using Outcome = ApplicationConnection::Outcome;
    switch (outcome) {
    case Outcome::done:
        return {};
    case Outcome::noTransport:
        return fail("Ambertide cannot be reached: this session has no message bus that answers");
    case Outcome::notRunning:
        return fail("Ambertide is not running");
    case Outcome::noAnswer:
        break;
    }
    return fail("Ambertide does not answer");
}

} // namespace

AmbertideCLI::Result AmbertideCLI::run(std::span<const std::string_view> arguments)
{
    if (arguments.empty())
        return refuse("a command is missing");
    const auto isHelp = [](std::string_view argument) { return argument == "--help" || argument == "-h"; };
    if (std::ranges::any_of(arguments, isHelp))
        return {success, std::string(usage) + std::string(details), {}};

    const auto command = arguments.front();
    const auto count = arguments.size() - 1;
    if (command == "set")
        return count == 1 ? setTemperature(arguments[1]) : refuse("\"set\" takes one temperature");
    if (command == "get")
        return count == 0 ? getTemperature() : refuse("\"get\" takes nothing more");
    if (command == "--version")
        return count == 0 ? Result{success, "ambertide " AMBERTIDE_VERSION "\n", {}}
                          : refuse("\"--version\" takes nothing more");
    return refuse("there is no such command");
}

AmbertideCLI::Result AmbertideCLI::setTemperature(std::string_view temperature)
{
    const auto kelvin = parseTemperature(temperature);
    if (!kelvin)
        return {wrongUsage, {}, "ambertide: the temperature must be a whole number from 1000 to 6500 (kelvin)\n"};
    const auto outcome = m_application.post(notifications::withTemperature(notifications::updateTemperature, *kelvin));
    if (outcome != ApplicationConnection::Outcome::done)
        return describe(outcome);
    const auto answer = requestTemperature();
    if (answer.outcome != ApplicationConnection::Outcome::done)
        return describe(answer.outcome);
    const auto refusal = refusalIn(*answer.notification);
    return refusal.empty() ? Result() : fail(refusal);
}

ApplicationConnection::Answer AmbertideCLI::requestTemperature()
{
    return m_application.request(notifications::withoutUserInfo(notifications::getTemperature),
                                 notifications::temperatureResponse);
}

AmbertideCLI::Result AmbertideCLI::getTemperature()
{
    const auto answer = requestTemperature();
    if (answer.outcome != ApplicationConnection::Outcome::done)
        return describe(answer.outcome);
    const auto kelvin = answer.notification ? notifications::integerTemperature(*answer.notification) : std::nullopt;
    if (!kelvin)
        return fail("Ambertide gave an answer without a temperature");
    return {success, std::to_string(*kelvin) + "\n", {}};
}

} // namespace ambertide
