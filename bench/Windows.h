#pragma once

namespace ambertide {

/// The icon, the panel and the Settings window of the running application, as a user meets them.
void measureWindows();

} // namespace ambertide
