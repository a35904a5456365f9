#pragma once

#include "ChildProcess.h"

#include <gtest/gtest.h>

namespace vktest {

/// Locks a whole file for this process if no other holds it, until the process ends.
inline bool LockWhole(const std::string& path, short type)
{
    struct flock lock = {};
    lock.l_type = type;
    lock.l_whence = SEEK_SET;
    const int fd = open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
    return fd >= 0 && fcntl(fd, F_SETLK, &lock) == 0;
}

/// Another process that holds a lock on a whole file as long as this object lives: a POSIX lock keeps only other
/// processes out.
class LockingProcess
{
public:
    explicit LockingProcess(const std::string& path, short type = F_WRLCK)
        : m_child([&] {
              const bool isLocked = LockWhole(path, type);
              m_tried.Send();
              return isLocked && m_end.Await() ? 0 : 1;
          })
    {
        EXPECT_TRUE(m_tried.Await());
    }
    ~LockingProcess() { Release(); }

    /// Ends the process, and the lock with it.
    void Release()
    {
        m_end.Send();
        EXPECT_EQ(m_child.Wait(), 0) << "the other process could not lock the file";
    }

private:
    Signal m_tried;
    Signal m_end;
    ChildProcess m_child;
};

/// Whether a process other than this one could lock the whole file now.
inline bool OthersCanLock(const std::string& path, short type = F_WRLCK)
{
    return ChildProcess([&] { return LockWhole(path, type) ? 0 : 1; }).Wait() == 0;
}

} // namespace vktest
