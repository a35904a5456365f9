#pragma once

#include <cstdlib>
#include <fcntl.h>
#include <stdexcept>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

namespace vktest {

/// Another process that holds a lock on a whole file as long as this object lives: a POSIX lock keeps only other
/// processes out.
class LockingProcess
{
public:
    explicit LockingProcess(const std::string& path, short type = F_WRLCK)
    {
        int ready[2];
        int end[2];
        if (pipe(ready) != 0 || pipe(end) != 0)
            throw std::runtime_error("pipe");
        m_child = fork();
        if (m_child == 0) {
            close(end[1]);
            struct flock lock = {};
            lock.l_type = type;
            lock.l_whence = SEEK_SET;
            const int fd = open(path.c_str(), O_RDWR | O_CREAT, 0666);
            char byte = fd >= 0 && fcntl(fd, F_SETLK, &lock) == 0 ? 'y' : 'n';
            if (write(ready[1], &byte, 1) == 1 && read(end[0], &byte, 1) >= 0)
                _exit(0);
            _exit(1);
        }
        close(ready[1]);
        close(end[0]);
        m_end = end[1];
        char byte = 'n';
        const bool told = read(ready[0], &byte, 1) == 1;
        close(ready[0]);
        if (!told || byte != 'y')
            throw std::runtime_error("the other process could not lock " + path);
    }
    ~LockingProcess() { Release(); }
    LockingProcess(const LockingProcess&) = delete;
    LockingProcess& operator=(const LockingProcess&) = delete;

    /// Ends the process, and the lock with it.
    void Release()
    {
        if (m_end < 0)
            return;
        close(m_end);
        m_end = -1;
        waitpid(m_child, nullptr, 0);
    }

private:
    pid_t m_child = -1;
    int m_end = -1;
};

/// Whether a process other than this one could lock the whole file now.
inline bool OthersCanLock(const std::string& path, short type = F_WRLCK)
{
    try {
        LockingProcess other(path, type);
        return true;
    } catch (const std::runtime_error&) {
        return false;
    }
}

} // namespace vktest
