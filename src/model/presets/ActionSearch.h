#pragma once

#include "model/presets/ColorTemperature.h"

#include <string_view>
#include <vector>

namespace ambertide {

struct ActionMatch
{
    ColorTemperature temperature;
    double relevance; ///< above 0, and 1 when nothing else can be meant
};

/// The presets that a person who types `query` into a launcher may mean, best first.
///
/// It understands kelvin ("3400", "3400k", and the beginning "34"), kinds of light, even if misspelt ("florescent") or
/// unfinished ("hal"), and both within a request ("set display temperature to 3400K in Ambertide"), in English and in
/// the language of the windows. Any other word means that the person is looking for something else: then, and when no
/// preset fits every word, nothing is found. The query may hold any bytes; a very long one finds nothing. Any thread.
std::vector<ActionMatch> findColorTemperatures(std::string_view query);

} // namespace ambertide
