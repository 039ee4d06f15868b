#pragma once

#include "update/UpdateFailure.h"

namespace ambertide {

/// What went wrong and what a person can do about it, translated.
QString describeForPeople(const UpdateFailure &failure);

} // namespace ambertide
