#include "Compare.h"

#include "Measuring.h"
#include "ProcessCost.h"
#include "Session.h"
#include "support/ChildProcess.h"

#include <QStandardPaths>

#include <sys/resource.h>

#include <cstdio>
#include <thread>

namespace ambertide {

using namespace std::chrono_literals;

namespace {

struct Column
{
    QString name;
    double memory = 0;             ///< proportional set size, MB, of all that stays in memory for the tint
    std::int64_t wakeUps = 0;      ///< in a minute
    double idleMilliseconds = 0;   ///< CPU time in that minute
    double changeMilliseconds = 0; ///< CPU time of a change by command to another temperature, all processes
};

double milliseconds(const timeval &time)
{
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_usec) / 1e3;
}

/// The CPU time of children that have ended.
double childrenMilliseconds()
{
    rusage usage{};
    getrusage(RUSAGE_CHILDREN, &usage);
    return milliseconds(usage.ru_utime) + milliseconds(usage.ru_stime);
}

void idle(Column &column, const std::vector<pid_t> &processes)
{
    std::vector<ProcessCost> before;
    for (const auto process : processes) {
        column.memory += static_cast<double>(memoryOf(process, "Pss:")) / 1024;
        before.push_back(ProcessCost::of(process));
    }
    std::this_thread::sleep_for(60s);
    for (std::size_t each = 0; each < processes.size(); ++each) {
        const auto cost = ProcessCost::of(processes[each]) - before[each];
        column.wakeUps += cost.wakeUps;
        column.idleMilliseconds += Milliseconds(cost.cpuTime).count();
    }
}

Column ambertideColumn(Session &session)
{
    Column column{.name = QStringLiteral("Ambertide")};
    session.store("3400");
    session.start();
    session.waitUntilReached();
    std::this_thread::sleep_for(8s); // it waits for a tray during the first five
    session.settle();
    const auto guardian = childOf(session.process(), "AmbertideGuardian");
    idle(column, {session.process(), guardian});
    const auto before = ProcessCost::of(session.process());
    const double childrenBefore = childrenMilliseconds();
    session.tool({QStringLiteral("set"), QStringLiteral("2700")});
    session.settle();
    column.changeMilliseconds = childrenMilliseconds() - childrenBefore +
                                Milliseconds((ProcessCost::of(session.process()) - before).cpuTime).count();
    session.stop();
    return column;
}

/// redshift and gammastep share their command line.
Column otherColumn(Session &session, const QString &program)
{
    Column column{.name = program};
    const auto neutral = session.shown();
    QProcess process;
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
    process.start(program, QStringLiteral("-m randr -l 0:0 -t 3400:3400").split(u' '));
    waitFor("no tint", [&] { return session.shown() != neutral; });
    session.settle();
    std::this_thread::sleep_for(8s);
    idle(column, {static_cast<pid_t>(process.processId())});
    const double before = childrenMilliseconds();
    QProcess change;
    change.start(program, QStringLiteral("-m randr -P -O 2700").split(u' '));
    change.waitForFinished();
    column.changeMilliseconds = childrenMilliseconds() - before;
    process.terminate();
    process.waitForFinished();
    return column;
}

void printRow(const char *what, const std::vector<Column> &columns, const std::function<double(const Column &)> &value)
{
    std::printf("| %s |", what);
    for (const auto &column : columns)
        std::printf(" %.1f |", value(column));
    std::puts("");
}

} // namespace

void compare()
{
    Session session;
    std::vector<Column> columns{ambertideColumn(session)};
    for (const auto &program : {QStringLiteral("redshift"), QStringLiteral("gammastep")}) {
        if (!QStandardPaths::findExecutable(program).isEmpty())
            columns.push_back(otherColumn(session, program));
    }
    std::printf("| tinted to 3400 K on X11, no window opened |");
    for (const auto &column : columns)
        std::printf(" %s |", qPrintable(column.name));
    std::puts("\n|---|---|---|---|");
    printRow("memory, proportional set size (MB)", columns, [](const Column &column) { return column.memory; });
    printRow("idle: wake-ups a minute", columns,
             [](const Column &column) { return static_cast<double>(column.wakeUps); });
    printRow("idle: CPU a minute (ms)", columns, [](const Column &column) { return column.idleMilliseconds; });
    printRow("a change to 2700 K by command: CPU (ms)", columns,
             [](const Column &column) { return column.changeMilliseconds; });
}

} // namespace ambertide
