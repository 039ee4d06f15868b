#pragma once

#include <unistd.h>

#include <utility>

namespace ambertide {

/// Owns a file descriptor; below zero means none.
class FileDescriptor
{
public:
    explicit FileDescriptor(int descriptor = -1) : m_descriptor(descriptor) {}
    FileDescriptor(FileDescriptor &&other) noexcept : m_descriptor(std::exchange(other.m_descriptor, -1)) {}
    FileDescriptor &operator=(FileDescriptor &&other) noexcept
    {
        std::swap(m_descriptor, other.m_descriptor);
        return *this;
    }
    FileDescriptor(const FileDescriptor &) = delete;
    FileDescriptor &operator=(const FileDescriptor &) = delete;
    ~FileDescriptor() { close(); }

    int get() const { return m_descriptor; }
    bool isOpen() const { return m_descriptor >= 0; }
    void close()
    {
        if (m_descriptor >= 0)
            ::close(std::exchange(m_descriptor, -1));
    }

private:
    int m_descriptor;
};

} // namespace ambertide
