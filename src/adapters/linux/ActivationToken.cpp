#include "adapters/linux/ActivationToken.h"

#include <algorithm>
#include <array>
#include <cstdlib>

namespace ambertide::activation_token {

namespace {

constexpr std::string_view name = "XDG_ACTIVATION_TOKEN=";
/// A variable of the environment, as the C library takes it.
constinit std::array<char, 2048> variable = {};

} // namespace

void offer(std::string_view token)
{
    if (name.size() + token.size() >= variable.size())
        return;
    const auto end = std::ranges::copy(token, std::ranges::copy(name, variable.begin()).out).out;
    *end = '\0';
    // The toolkit takes the variable away along with the token.
    if (std::getenv("XDG_ACTIVATION_TOKEN") != variable.data() + name.size())
        putenv(variable.data());
}

} // namespace ambertide::activation_token
