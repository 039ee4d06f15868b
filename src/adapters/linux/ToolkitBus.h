#pragma once

namespace ambertide {

/// Keeps the toolkit off a session bus that does not answer within half a second, for which it would wait on the main
/// thread, for minutes. Accessibility is missing then; this program's own connections go on trying. Changes the
/// environment for a moment, so it has to be called before there are threads that read it, and before the toolkit is
/// started.
void keepToolkitOffMuteBus();

} // namespace ambertide
