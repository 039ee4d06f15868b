#pragma once

#include <functional>

namespace ambertide {

/// Confines SIGTERM and SIGINT to a thread that does nothing but wait for them: their handler then never interrupts
/// code that holds a lock or the allocator. Once, before any other thread is started.
void confineEndingSignals();

/// Has `work` done, on that thread, before either takes effect: it has to end soon. Replaces the work of before, and
/// waits while that is being done. An empty one is none.
void setLastWork(std::function<void()> work);

} // namespace ambertide
