#pragma once

#include <array>
#include <chrono>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace ambertide {

class KConfigGroup;

/// The user's settings of KWin's Night Light, borrowed for tinting: the keys Active, Mode and NightTemperature of the
/// group [NightColor] in kwinrc. KWin reads them when it is told to (see announceNightLight.h) and when it starts, so
/// the tint outlives the program, the session and even a power failure.
///
/// What the user had, and what was put in its place, is kept in a state file from before the first change until the
/// settings are given back. They are given back only if they are as this program left them: what somebody has changed
/// since then is theirs. Only one copy at a time can borrow, under a lock that ends with its process, however that
/// ends.
class NightLightLoan
{
public:
    struct Files
    {
        std::string state;
        std::string kwinrc;
        std::vector<std::string> systemKwinrcs; ///< in which an administrator may have locked settings
    };
    /// The user's files, as the environment names them.
    static Files filesOfUser();

    enum class End {
        nothingBorrowed,
        givenBack,
        changedByOthers, ///< and so left alone
        failed,          ///< and so still borrowed; the reason is in failure()
    };

    explicit NightLightLoan(Files files) : m_files(std::move(files)) {}
    ~NightLightLoan();
    NightLightLoan(const NightLightLoan &) = delete;
    NightLightLoan &operator=(const NightLightLoan &) = delete;

    const Files &files() const { return m_files; }

    /// Writes settings by which Night Light shows `temperature` (in KWin's kelvin) all day; KWin has yet to be told.
    /// False when that fails, for the reason in failure().
    bool borrow(int temperature);
    /// Whether this object has borrowed the settings.
    bool isActive() const { return m_isActive; }
    /// False when somebody has changed what is borrowed.
    bool isUntouched() const;
    /// Gives back what this copy, or one that no longer runs, has borrowed. Waits for up to `patience` until such a
    /// copy has ended.
    End giveBack(std::chrono::milliseconds patience);

    /// Why the last call failed: the end of a sentence.
    const std::string &failure() const { return m_failure; }

private:
    static constexpr std::array<const char *, 3> keys{"Active", "Mode", "NightTemperature"};

    struct State
    {
        bool hadGroup = false;
        std::array<std::optional<std::string>, keys.size()> lines; ///< as the user had them; nothing for an absent one
        std::vector<std::string> temperatures;                     ///< that were written, the last one perhaps not yet
    };

    static State stateOf(const KConfigGroup &group, const std::vector<std::string> &temperatures);
    static bool isOurs(const KConfigGroup &group, const State &state);
    std::optional<State> readState() const;
    bool writeState(const State &state);
    bool tryBorrow(const std::string &temperature);
    End tryGiveBack();
    std::optional<KConfigGroup> readSettings();
    bool isLocked(const KConfigGroup &settings) const;
    bool replaceSettings(const std::string &before, const KConfigGroup &after);
    bool fail(const std::string &what, const std::string &file);
    bool lock(std::chrono::milliseconds patience);
    void unlock();

    const Files m_files;
    int m_lock = -1; ///< the folder of the state file, locked; the kernel unlocks it when the process ends
    bool m_isActive = false;
    std::string m_failure;
};

} // namespace ambertide
