#pragma once

namespace ambertide {

/// Has the toolkit do without a session bus that does not answer within half a second: it would wait for that on the
/// main thread, for minutes. Accessibility is missing then; this program's own connections go on trying. Changes the
/// environment for a moment: to be called before there are threads that read it, and before the toolkit is started.
void keepToolkitOffMuteBus();

} // namespace ambertide
