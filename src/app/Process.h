#pragma once

#include <filesystem>
#include <functional>

/// What this program arranges for itself as a process, from its first line to its last.
namespace ambertide::process {

/// Makes sure that descriptors 0 to 2 are open, ignores SIGPIPE, no longer ignores SIGCHLD, and confines SIGTERM and
/// SIGINT to a thread that does nothing but wait for them, so that their handler never interrupts code that holds a
/// lock or the allocator. From then on an exception that nobody catches ends the process with one line and status 1. To
/// be called once, before any other thread is started.
void prepare();

/// Before SIGTERM or SIGINT takes effect, `work` runs on the thread that waits for them; it has to be quick. It also
/// runs when a library ends the process with exit(), then on the thread that calls that. Replaces the former work, and
/// waits for it if it is running; an empty one means none. To be called when what `work` uses exists.
void setLastWork(std::function<void()> work);

/// For a process that is ending already: from now on both signals are ignored, and there is no last work.
void ignoreEndingSignals();

/// Replaces this process with a new run of `program`, whose file may be a newer one by now. Returns only if that fails,
/// after printing the reason in one line.
void startAnew(const std::filesystem::path &program, char *argv[]);

} // namespace ambertide::process
