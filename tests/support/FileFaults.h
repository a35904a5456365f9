#pragma once

#include <csignal>
#include <cstdlib>
#include <functional>
#include <sys/resource.h>
#include <unistd.h>

/// What may be wrong with a disk and its rights, for as long as an object lives.
namespace vktest {

/// Acts as a user without rights, so that file modes bind; root passes them otherwise.
class WithoutRootRights
{
public:
    WithoutRootRights() { m_changed = geteuid() == 0 && seteuid(65534) == 0; }
    ~WithoutRootRights()
    {
        if (m_changed && seteuid(0) != 0)
            abort();
    }
    WithoutRootRights(const WithoutRootRights&) = delete;
    WithoutRootRights& operator=(const WithoutRootRights&) = delete;

private:
    bool m_changed;
};

/// No file of this process grows beyond a size, as if the disk ended there.
class FilesEndAt
{
public:
    explicit FilesEndAt(rlim_t bytes) : m_signal(signal(SIGXFSZ, SIG_IGN))
    {
        getrlimit(RLIMIT_FSIZE, &m_before);
        const rlimit limit{bytes, m_before.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FilesEndAt()
    {
        setrlimit(RLIMIT_FSIZE, &m_before);
        signal(SIGXFSZ, m_signal);
    }
    FilesEndAt(const FilesEndAt&) = delete;
    FilesEndAt& operator=(const FilesEndAt&) = delete;

private:
    rlimit m_before{};
    void (*m_signal)(int);
};

} // namespace vktest
