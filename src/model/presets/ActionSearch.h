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

/// The presets that a person may mean who types `query` into a launcher, best first.
///
/// Understood are kelvin ("3400", "3400k", and "34" on the way there), kinds of light however they are spelt
/// ("halogen", "florescent") and as yet incomplete ("hal"), and both among the words of a request ("set display
/// temperature to 3400K in Ambertide"). A word that is none of these means that something else is looked for: then, and
/// when no preset fits every word, nothing is found. Any bytes may come; long ones find nothing. Any thread.
std::vector<ActionMatch> findColorTemperatures(std::string_view query);

} // namespace ambertide
