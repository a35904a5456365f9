#include "LockFile.h"

#include "VKconException.h"
#include "VKsystemError.h"
#include "VKthread.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr mode_t kLockFileMode = 0664;

/// Whether the failure will still be there after a pause, however long.
bool IsLasting(int error, bool creating)
{
    switch (error) {
    case EACCES:
    case EPERM:
    case EROFS:
    case ENOTDIR:
    case EISDIR:
    case ENAMETOOLONG:
    case ELOOP:
    case ENOSPC:
    case EDQUOT:
        return true;
    case ENOENT: // without O_CREAT somebody has just deleted the lock file
        return creating;
    default:
        return false;
    }
}

} // namespace

LockFile::LockFile(const std::string& path, int tries, int pauseMs)
{
    for (int i = 0; i < tries; ++i) {
        if (i > 0)
            VKsleep(pauseMs);
        if (TryLock(path))
            return;
    }
    throw VKconException(GetMyThreadID(), "../include/LockFile", __LINE__, "LockFile Creation Failed", path);
}

LockFile::~LockFile() { close(m_fd); }

bool LockFile::TryLock(const std::string& path)
{
    struct stat found;
    const bool creating = stat(path.c_str(), &found) != 0;
    const int flags = O_RDWR | O_SYNC | O_CLOEXEC | (creating ? O_CREAT | O_EXCL : 0);
    const int fd = open(path.c_str(), flags, kLockFileMode);
    if (fd < 0) {
        if (IsLasting(errno, creating))
            throw VKconException(GetMyThreadID(), "../include/LockFile", __LINE__, "LockFile Creation Failed",
                                 path + ": " + VKgetLastError());
        return false;
    }

    // A lock of the open file description: it excludes the plain locks of other processes just so, and beyond that the
    // other threads of this one, and outlives the closing of another descriptor of the file.
    struct flock whole = {};
    whole.l_type = F_WRLCK;
    whole.l_whence = SEEK_SET;
    if (fcntl(fd, F_OFD_SETLK, &whole) != 0) {
        close(fd);
        return false;
    }
    m_fd = fd;
    return true;
}
