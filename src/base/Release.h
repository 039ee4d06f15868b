#pragma once

namespace ambertide {

/// Deleter of a std::unique_ptr to an object from a C library: frees it with the library's own function.
template <auto release>
struct Release
{
    template <typename Object>
    void operator()(Object *object) const
    {
        release(object);
    }
};

} // namespace ambertide
