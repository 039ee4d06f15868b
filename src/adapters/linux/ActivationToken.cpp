#include "adapters/linux/ActivationToken.h"

#include <algorithm>
#include <array>
#include <cstdlib>

namespace ambertide::activation_token {

namespace {

constexpr std::string_view name = "XDG_ACTIVATION_TOKEN=";
/// The variable as putenv() takes it, which does not copy it.
constinit std::array<char, 2048> variable = {};

} // namespace

void offer(std::string_view token)
{
    if (name.size() + token.size() >= variable.size())
        return;
    const auto end = std::ranges::copy(token, std::ranges::copy(name, variable.begin()).out).out;
    *end = '\0';
    // The toolkit removes the variable when it takes the token.
    if (std::getenv("XDG_ACTIVATION_TOKEN") != variable.data() + name.size())
        putenv(variable.data());
}

} // namespace ambertide::activation_token
