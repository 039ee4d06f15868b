#include "adapters/linux/displays/kwin/settings/NightLightLoan.h"

#include "adapters/linux/displays/kwin/settings/KConfigGroup.h"
#include "adapters/linux/displays/kwin/settings/SettingsFile.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string_view>

namespace ambertide {

namespace {

using namespace std::chrono_literals;

constexpr char groupName[] = "NightColor";
constexpr char stateTitle[] = "Settings of KWin's Night Light from before Ambertide changed them";
constexpr auto patienceForOthers = 200ms; ///< copies that are ending, guardians that give back what one had borrowed
constexpr int mostAttempts = 5;           ///< while others write the same file

/// The folder that the environment variable names, or else `name` in the home folder. Relative paths do not count (XDG
/// Base Directory Specification).
std::string baseFolder(const char *variable, const char *name)
{
    const char *const value = std::getenv(variable);
    if (value && *value == '/')
        return value;
    const char *const home = std::getenv("HOME");
    return std::string(home ? home : "") + '/' + name;
}

std::string_view takeUntil(std::string_view &text, char end)
{
    const auto length = std::min(text.find(end), text.size());
    const auto taken = text.substr(0, length);
    text.remove_prefix(std::min(length + 1, text.size()));
    return taken;
}

} // namespace

NightLightLoan::Files NightLightLoan::filesOfUser()
{
    Files files{.state = baseFolder("XDG_STATE_HOME", ".local/state") + "/ambertide/night-light",
                .kwinrc = baseFolder("XDG_CONFIG_HOME", ".config") + "/kwinrc",
                .systemKwinrcs = {}};
    const char *const value = std::getenv("XDG_CONFIG_DIRS");
    std::string_view folders = value && *value ? value : "/etc/xdg";
    while (!folders.empty())
        files.systemKwinrcs.push_back(std::string(takeUntil(folders, ':')) + "/kwinrc");
    return files;
}

NightLightLoan::~NightLightLoan() { unlock(); }

bool NightLightLoan::borrow(int temperature)
{
    if (!lock(patienceForOthers)) {
        m_failure = "another copy of Ambertide tints them";
        return false;
    }
    bool isDone = false;
    int attempts = 0;
    do
        isDone = tryBorrow(std::to_string(temperature));
    while (!isDone && errno == ESTALE && ++attempts < mostAttempts);
    m_isActive = m_isActive || isDone;
    if (!m_isActive)
        unlock();
    return isDone;
}

bool NightLightLoan::tryBorrow(const std::string &temperature)
{
    auto settings = readSettings();
    if (!settings)
        return false;
    if (isLocked(*settings)) {
        m_failure = "the settings of KWin's Night Light are locked";
        errno = EPERM;
        return false;
    }
    auto state = readState();
    if (state && isOurs(*settings, *state))
        state->temperatures = {*settings->value(keys[2]), temperature};
    else
        state = stateOf(*settings, {temperature});
    if (!writeState(*state))
        return false;
    const auto before = settings->text();
    settings->setValue(keys[0], "true");
    settings->setValue(keys[1], "Constant");
    settings->setValue(keys[2], temperature);
    return replaceSettings(before, *settings);
}

bool NightLightLoan::isUntouched() const
{
    const auto text = settings_file::read(m_files.kwinrc);
    const auto state = readState();
    return text && state && isOurs(KConfigGroup(*text, groupName), *state);
}

NightLightLoan::End NightLightLoan::giveBack(std::chrono::milliseconds patience)
{
    if (!lock(patience))
        return End::nothingBorrowed;
    auto end = End::failed;
    int attempts = 0;
    do
        end = tryGiveBack();
    while (end == End::failed && errno == ESTALE && ++attempts < mostAttempts);
    if (end == End::failed)
        return end;
    unlink(m_files.state.c_str());
    m_isActive = false;
    unlock();
    return end;
}

NightLightLoan::End NightLightLoan::tryGiveBack()
{
    if (!settings_file::read(m_files.state)) {
        fail("read", m_files.state);
        return End::failed;
    }
    const auto state = readState();
    if (!state)
        return End::nothingBorrowed;
    auto settings = readSettings();
    if (!settings)
        return End::failed;
    if (!isOurs(*settings, *state))
        // They may still, or again, be the user's own: if the power failed just before the first change, or before the
        // state file was removed.
        return stateOf(*settings, {}).lines == state->lines ? End::nothingBorrowed : End::changedByOthers;
    const auto before = settings->text();
    for (std::size_t i = 0; i < keys.size(); ++i)
        settings->setLine(keys[i], state->lines[i]);
    if (!state->hadGroup)
        settings->removeIfEmpty();
    return replaceSettings(before, *settings) ? End::givenBack : End::failed;
}

NightLightLoan::State NightLightLoan::stateOf(const KConfigGroup &group, const std::vector<std::string> &temperatures)
{
    State state{.hadGroup = group.exists(), .lines = {}, .temperatures = temperatures};
    std::ranges::transform(keys, state.lines.begin(), [&group](const char *key) { return group.line(key); });
    return state;
}

bool NightLightLoan::isOurs(const KConfigGroup &group, const State &state)
{
    const auto temperature = group.value(keys[2]);
    return group.value(keys[0]) == "true" && group.value(keys[1]) == "Constant" && temperature &&
           std::ranges::count(state.temperatures, *temperature) > 0;
}

/// A damaged state file counts as none: there is nothing to restore from.
std::optional<NightLightLoan::State> NightLightLoan::readState() const
{
    const auto text = settings_file::read(m_files.state);
    std::string_view rest = text ? *text : std::string_view();
    if (takeUntil(rest, '\n') != stateTitle)
        return std::nullopt;
    State state;
    while (!rest.empty()) {
        auto line = takeUntil(rest, '\n');
        const auto word = takeUntil(line, ' ');
        if (word == "group")
            state.hadGroup = true;
        else if (word == "wrote")
            state.temperatures.emplace_back(line);
        for (std::size_t i = 0; i < keys.size(); ++i) {
            if (word == keys[i])
                state.lines[i] = line;
        }
    }
    return state;
}

bool NightLightLoan::writeState(const State &state)
{
    std::string text = std::string(stateTitle) + '\n';
    if (state.hadGroup)
        text += "group\n";
    for (std::size_t i = 0; i < keys.size(); ++i) {
        if (state.lines[i])
            text += std::string(keys[i]) + ' ' + *state.lines[i] + '\n';
    }
    for (const auto &temperature : state.temperatures)
        text += "wrote " + temperature + '\n';
    const auto before = settings_file::read(m_files.state);
    return (before && settings_file::replace(m_files.state, *before, text)) || fail("write", m_files.state);
}

std::optional<KConfigGroup> NightLightLoan::readSettings()
{
    const auto text = settings_file::read(m_files.kwinrc);
    if (!text) {
        fail("read", m_files.kwinrc);
        return std::nullopt;
    }
    return KConfigGroup(*text, groupName);
}

bool NightLightLoan::isLocked(const KConfigGroup &settings) const
{
    const auto isLockedIn = [](const KConfigGroup &group) {
        return std::ranges::any_of(keys, [&group](const char *key) { return group.isImmutable(key); });
    };
    return isLockedIn(settings) || std::ranges::any_of(m_files.systemKwinrcs, [&](const std::string &file) {
               return isLockedIn(KConfigGroup(settings_file::read(file).value_or(""), groupName));
           });
}

bool NightLightLoan::replaceSettings(const std::string &before, const KConfigGroup &after)
{
    const auto text = after.text();
    return text == before || settings_file::replace(m_files.kwinrc, before, text) || fail("write", m_files.kwinrc);
}

bool NightLightLoan::fail(const std::string &what, const std::string &file)
{
    const int failure = errno;
    m_failure = "cannot " + what + " " + file + ": " + std::strerror(failure);
    errno = failure;
    return false;
}

/// Locks the folder, not the state file, which comes and goes.
bool NightLightLoan::lock(std::chrono::milliseconds patience)
{
    if (m_lock >= 0)
        return true;
    const auto folder = settings_file::folderOf(m_files.state);
    settings_file::makeFolder(folder);
    m_lock = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    const auto deadline = std::chrono::steady_clock::now() + patience;
    while (flock(m_lock, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) {
        if (std::chrono::steady_clock::now() >= deadline) {
            unlock();
            return false;
        }
        usleep(1000);
    }
    return true; // also where the file system knows no locks
}

void NightLightLoan::unlock()
{
    if (m_lock >= 0)
        close(m_lock);
    m_lock = -1;
}

} // namespace ambertide
