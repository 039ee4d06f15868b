#pragma once

namespace ambertide {

/// For a std::unique_ptr to what a C library hands out: lets go of it by the library's function.
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
