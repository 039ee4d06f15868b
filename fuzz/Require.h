#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>

/// Ends the process where a promise is broken, which is how a fuzzer learns of it.
inline void require(bool condition)
{
    if (!condition)
        std::abort();
}
