#pragma once

#include "update/UpdateFailure.h"

namespace ambertide {

/// What went wrong and what the user can do about it, translated.
QString describeForPeople(const UpdateFailure &failure);

} // namespace ambertide
