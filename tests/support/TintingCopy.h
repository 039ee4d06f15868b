#pragma once

#include "support/ChildProcess.h"

#include <QProcess>
#include <QTest>

#include <sys/prctl.h>
#include <sys/wait.h>

#include <csignal>

namespace ambertide {

/// A copy of the application (see tinting_copy.cpp), in a process group of its own, that ends with this object.
class TintingCopy : public QProcess
{
public:
    /// Of the display servers that the environment names, it tints the one of that kind.
    explicit TintingCopy(const char *kind)
    {
        prctl(PR_SET_CHILD_SUBREAPER, 1); // an orphaned guardian becomes a child of the test
        qputenv("AMBERTIDE_DISPLAY", kind);
        setChildProcessModifier([] { setpgid(0, 0); });
        start(QStringLiteral(AMBERTIDE_TINTING_COPY), {QStringLiteral(AMBERTIDE_BUNDLE "/Contents/MacOS")});
    }
    ~TintingCopy() override
    {
        kill();
        waitForFinished();
    }

    /// Shows this level of blue, and at 1 gives the displays back.
    void show(const QByteArray &level)
    {
        write(level + '\n');
        QByteArray printed = "\n"; // the level, among what it has to say
        while (state() != NotRunning && !printed.contains('\n' + level + '\n')) {
            waitForReadyRead(100);
            printed += readAll();
        }
    }
    pid_t process() const { return static_cast<pid_t>(processId()); }
    /// 0 where it has none.
    pid_t guardian() const { return childOf(process(), "AmbertideGuardian"); }

    /// Has it return from main(), or kills it with all its group. False when it has no guardian, or that does not end
    /// in that many milliseconds: before the copy where that returns.
    bool end(bool byReturning = false, int patience = 500)
    {
        const auto guarding = guardian();
        if (processId() == 0)
            return false;
        ::kill(-process(), SIGSTOP); // so that it starts no other one
        for (const int harmless : {SIGTERM, SIGINT, SIGQUIT, SIGHUP, SIGTSTP, SIGPIPE}) {
            if (guarding != 0)
                ::kill(guarding, harmless);
        }
        if (byReturning)
            closeWriteChannel();
        else
            ::kill(-process(), SIGKILL);
        ::kill(-process(), SIGCONT);
        waitForFinished();
        const auto hasEnded = [guarding] { return waitpid(guarding, nullptr, WNOHANG) != 0; };
        return guarding != 0 && QTest::qWaitFor(hasEnded, byReturning ? 0 : patience);
    }
};

} // namespace ambertide
