#pragma once

#include <filesystem>
#include <functional>

/// What this program sees to as a process, from its first line to its last.
namespace ambertide::process {

/// Makes sure that descriptors 0 to 2 are open, ignores SIGPIPE, sees its children end, and confines SIGTERM and SIGINT
/// to a thread that does nothing but wait for them: their handler then never interrupts code that holds a lock or the
/// allocator. From then on an exception that nobody catches ends the process with one line and status 1. Once, before
/// any other thread is started.
void prepare();

/// Has `work` done, on that thread, before either signal takes effect: it has to end soon. It is done as well when a
/// library ends the process, by exit(), on whatever thread. Replaces the work of before, and waits while that is being
/// done. An empty one is none. Not before what `work` uses has been made.
void setLastWork(std::function<void()> work);

/// The process is ending already: neither signal is handled from now on, nor is there any last work.
void ignoreEndingSignals();

/// Replaces this process with a new run of `program`, the file of which may be another by now. Returns only when that
/// fails, having said why in one line.
void startAnew(const std::filesystem::path &program, char *argv[]);

} // namespace ambertide::process
