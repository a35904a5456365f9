#pragma once

#include <cstdio>
#include <dirent.h>
#include <memory>
#include <unistd.h>

namespace vk {

/// Owns a file descriptor.
class FileHandle
{
public:
    explicit FileHandle(int fd = -1) : m_fd(fd) {}
    ~FileHandle() { Close(); }
    FileHandle(FileHandle&& other) noexcept : m_fd(other.Release()) {}
    FileHandle& operator=(FileHandle&& other) noexcept
    {
        if (this != &other) {
            Close();
            m_fd = other.Release();
        }
        return *this;
    }

    int Get() const { return m_fd; }
    explicit operator bool() const { return m_fd >= 0; }
    int Release()
    {
        const int fd = m_fd;
        m_fd = -1;
        return fd;
    }
    /// What close() returned; a second call does nothing.
    int Close() { return m_fd < 0 ? 0 : close(Release()); }

private:
    int m_fd;
};

struct CloseStream
{
    void operator()(FILE* stream) const { fclose(stream); }
};
/// Owns a stream.
using FileStream = std::unique_ptr<FILE, CloseStream>;

struct CloseDirectory
{
    void operator()(DIR* directory) const { closedir(directory); }
};
/// Owns an open directory.
using DirectoryStream = std::unique_ptr<DIR, CloseDirectory>;

} // namespace vk
