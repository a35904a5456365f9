#include "VKSessionHandles.h"

#include "VKSQLite3Database.h"

#include <mutex>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace vk {

namespace {

constexpr std::size_t kMostIdle = 4; // one for each thread that sends at once, commonly

/// What tells one file from another of the same name. The size is in it, so that a file that was cut short is opened
/// anew, and found out.
struct FileIdentity
{
    explicit FileIdentity(const std::string& path)
    {
        struct stat facts = {};
        if (::stat(path.c_str(), &facts) == 0) {
            device = facts.st_dev;
            inode = facts.st_ino;
            size = facts.st_size;
        }
    }
    bool IsFileOf(const FileIdentity& before) const
    {
        return inode != 0 && inode == before.inode && device == before.device && size >= before.size;
    }

    dev_t device = 0;
    ino_t inode = 0; ///< 0 for no file
    off_t size = 0;
};

struct Idle
{
    std::unique_ptr<VKSQLite3Database> handle;
    FileIdentity file;
    pid_t process; ///< a handle must not be used, nor closed, on the other side of a fork
};

std::mutex s_guard;

std::vector<Idle>& Pool()
{
    static std::vector<Idle> pool; // guarded by s_guard
    return pool;
}

} // namespace

std::unique_ptr<VKSQLite3Database> SessionHandles::Take(const std::string& path)
{
    const FileIdentity now(path);
    std::vector<std::unique_ptr<VKSQLite3Database>> stale; // closed behind the lock
    const std::lock_guard<std::mutex> lock(s_guard);
    std::vector<Idle>& pool = Pool();
    while (!pool.empty()) {
        Idle idle = std::move(pool.back());
        pool.pop_back();
        if (idle.process != ::getpid()) {
            static_cast<void>(idle.handle.release());
            continue;
        }
        if (idle.handle->GetPath() == path && now.IsFileOf(idle.file))
            return std::move(idle.handle);
        stale.push_back(std::move(idle.handle));
    }
    return nullptr;
}

void SessionHandles::Give(std::unique_ptr<VKSQLite3Database> handle)
{
    if (!handle || !handle->IsReady() || handle->IsTransactionInProgress())
        return;
    const FileIdentity file(handle->GetPath());
    const std::lock_guard<std::mutex> lock(s_guard);
    if (file.inode != 0 && Pool().size() < kMostIdle)
        Pool().push_back({std::move(handle), file, ::getpid()});
}

} // namespace vk
