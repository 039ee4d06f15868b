#pragma once

#include "adapters/linux/displays/shared/GuardianMessage.h"

#include <sys/types.h>

#include <chrono>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

namespace ambertide {

/// The application's side of its guardian: starts the process with the first tint, replaces it when it has been killed
/// or stopped, and tells it what it has to watch. One thread at a time.
///
/// When a guardian cannot be started, one line says so and everything goes on without it; starting one is tried again
/// once a second at most.
class GuardianProcess
{
public:
    /// `program` is the path of the guardian's program; `arguments` name the kind of display server and where it is.
    GuardianProcess(std::filesystem::path program, std::vector<std::string> arguments);
    /// Waits for the guardian's end, half a second at most. The connection that tints should have been closed before.
    ~GuardianProcess();
    GuardianProcess(const GuardianProcess &) = delete;
    GuardianProcess &operator=(const GuardianProcess &) = delete;

    /// To be called before each write of a tint: `claim` is the one under which it is made (see GuardianMessage).
    void guard(GuardianMessage claim);
    /// To be called when the displays have the system's own colours: the guardian then has nothing to do when the
    /// application ends.
    void dismiss();

    /// The descriptor of the channel, which hangs up when the guardian ends; -1 while there is none.
    int channel() const { return m_channel; }
    /// Replaces a guardian that has ended or been stopped while it had displays to restore, and forgets one that had
    /// not, with its channel.
    void renew();
    /// A guardian is needed and could not be started.
    bool isMissing() const { return m_isMissing; }
    bool hasStarted() const { return m_started != 0; }
    /// The process that has been started since the last call; 0 when none has.
    pid_t takeStarted() { return std::exchange(m_started, 0); }

private:
    using Clock = std::chrono::steady_clock;

    bool isRunning();
    bool start();
    int spawn(int channel);
    void tell(GuardianMessage message);
    void forget();
    void sayUnguarded(const char *reason);

    const std::filesystem::path m_program;
    const std::vector<std::string> m_arguments;
    pid_t m_process = 0; ///< 0: none
    pid_t m_started = 0;
    int m_channel = -1;
    GuardianMessage m_told = 0;
    Clock::time_point m_earliestStart{};
    int m_failures = 0; ///< of guardians in a row that gave up by themselves
    bool m_isMissing = false;
    bool m_failureSaid = false;
};

} // namespace ambertide
