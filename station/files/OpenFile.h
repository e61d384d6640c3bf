#pragma once

#include <utility>

#include <unistd.h>

/// A file descriptor, closed at the end.
class OpenFile
{
public:
    explicit OpenFile(int descriptor = -1)
        : m_descriptor(descriptor)
    {
    }
    ~OpenFile()
    {
        if (m_descriptor >= 0)
            close(m_descriptor);
    }
    OpenFile(OpenFile &&other) noexcept
        : m_descriptor(std::exchange(other.m_descriptor, -1))
    {
    }
    OpenFile &operator=(OpenFile &&other) noexcept
    {
        std::swap(m_descriptor, other.m_descriptor);
        return *this;
    }
    OpenFile(const OpenFile &) = delete;
    OpenFile &operator=(const OpenFile &) = delete;

    int get() const { return m_descriptor; }
    bool isOpen() const { return m_descriptor >= 0; }
    /// Gives the descriptor away.
    int release() { return std::exchange(m_descriptor, -1); }

private:
    int m_descriptor;
};
