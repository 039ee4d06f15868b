#pragma once

namespace ambertide {

/// One descriptor that is readable while any of several is.
class PollSet
{
public:
    PollSet();
    ~PollSet();
    PollSet(const PollSet &) = delete;
    PollSet &operator=(const PollSet &) = delete;

    /// Adds a descriptor that stays its owner's, and that leaves the set when it is closed.
    void add(int descriptor) const;
    int descriptor() const { return m_descriptor; }

private:
    const int m_descriptor;
};

} // namespace ambertide
