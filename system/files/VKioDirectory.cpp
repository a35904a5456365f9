#include "VKioDirectory.h"

#include "VKconCriticalSection.h"
#include "VKfileHandle.h"
#include "VKioException.h"
#include "VKsystemError.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr const char* kLockName = "lock";

enum class Kinds { FilesOnly, WithDirectories };

/// The matching names of a directory but its lock, in order.
std::vector<std::string> Names(const std::string& path, const std::string& pattern, Kinds kinds)
{
    const vk::DirectoryStream directory(opendir(path.c_str()));
    std::vector<std::string> names;
    errno = directory ? 0 : errno;
    while (const dirent* entry = directory ? readdir(directory.get()) : nullptr) {
        const std::string name = entry->d_name;
        if (name == "." || name == ".." || name == kLockName ||
            !VKioFile::DoesFileNameContainPattern(name.c_str(), pattern.c_str()))
            continue;
        if (kinds == Kinds::WithDirectories || !VKioFile::IsDirectory(VKioFile::CreatePath(path, name)))
            names.push_back(name);
        errno = 0;
    }
    if (errno != 0)
        throw VKioException(path, "../src/VKioDirectory", __LINE__, "Read Directory Failed", VKgetLastError());
    std::sort(names.begin(), names.end());
    return names;
}

int List(const std::string& path, VKioFileList& list, const std::string& pattern, int skip, int limit, Kinds kinds)
{
    const std::vector<std::string> names = Names(path, pattern, kinds);
    const std::size_t begin = std::min(names.size(), static_cast<std::size_t>(std::max(skip, 0)));
    const std::size_t count =
        limit > 0 ? std::min(names.size() - begin, static_cast<std::size_t>(limit)) : names.size() - begin;
    list.reserve(list.size() + count);
    for (std::size_t i = begin; i < begin + count; ++i)
        list.push_back(
            std::make_unique<VKioFile>(VKioFile::CreatePath(path, names[i])).release()); // the list's owner's
    return static_cast<int>(count);
}

bool IsLink(const std::string& path)
{
    struct stat facts = {};
    return lstat(path.c_str(), &facts) == 0 && S_ISLNK(facts.st_mode);
}

/// Whether a path, which need not exist, is the directory itself or lies below it.
bool LiesInside(const std::string& path, const std::string& directory)
{
    std::error_code failure;
    const std::filesystem::path inner = std::filesystem::weakly_canonical(path, failure);
    const std::filesystem::path outer = std::filesystem::weakly_canonical(directory + "/.", failure);
    return std::mismatch(outer.begin(), outer.end(), inner.begin(), inner.end()).first == outer.end();
}

/// Links to directories are left out: they may lead back up.
bool CopyTree(const std::string& from, const std::string& to)
{
    for (const std::string& name : Names(from, "*", Kinds::WithDirectories)) {
        const std::string source = VKioFile::CreatePath(from, name);
        const std::string target = VKioFile::CreatePath(to, name);
        if (!VKioFile::IsDirectory(source))
            VKioFile::Copy(source, target);
        else if (!IsLink(source) && !(VKioDirectory::CreateFullPath(target) && CopyTree(source, target)))
            return false;
    }
    return true;
}

} // namespace

VKioDirectory::VKioDirectory(const std::string& path) : m_strPath(path) {}

VKioDirectory::~VKioDirectory()
{
    if (m_pLockFile)
        m_objThreadLock.Unlock(); // the file's lock goes with its object
}

bool VKioDirectory::Create(const std::string& path) { return mkdir(path.c_str(), 0777) == 0; }

bool VKioDirectory::CreateFullPath(const std::string& path)
{
    for (std::size_t end = path.find_first_of("/\\", 1); end != std::string::npos;
         end = path.find_first_of("/\\", end + 1)) {
        const std::string prefix = path.substr(0, end);
        if (!VKioFile::IsExisting(prefix) && !Create(prefix) && errno != EEXIST)
            return false;
    }
    if (!VKioFile::IsExisting(path) && !Create(path) && errno != EEXIST)
        return false;
    return VKioFile::IsDirectory(path);
}

bool VKioDirectory::Remove(const std::string& path, bool withFiles)
{
    if (withFiles && VKioFile::IsDirectory(path)) {
        for (const std::string& name : Names(path, "*", Kinds::FilesOnly))
            if (!VKioFile::DeleteFile(VKioFile::CreatePath(path, name)))
                return false;
        VKioFile::DeleteFile(VKioFile::CreatePath(path, kLockName));
    }
    return rmdir(path.c_str()) == 0;
}

bool VKioDirectory::Check(const std::string& directory, const std::string& name)
{
    if (name == "r" || name == "w")
        return VKioFile::IsDirectory(directory) && access(directory.c_str(), (name == "r" ? R_OK : W_OK) | X_OK) == 0;
    return VKioFile::IsDirectory(VKioFile::CreatePath(directory, name));
}

bool VKioDirectory::Copy(const std::string& from, const std::string& to)
{
    if (!VKioFile::IsDirectory(from))
        return false;
    if (LiesInside(to, from)) {
        errno = EINVAL;
        return false; // it would copy itself without end
    }
    return CreateFullPath(to) && CopyTree(from, to);
}

std::unique_ptr<VKioFile> VKioDirectory::OpenLockFile(char mode) const
{
    auto file = std::make_unique<VKioFile>(VKioFile::CreatePath(m_strPath, kLockName));
    const std::string& path = file->GetPath();
    if (VKioFile::IsExisting(path) && VKioFile::GetSize(path) > 0) {
        file->Open(mode == 'r' ? "r" : "a");
    } else {
        file->Open("w+");
        file->Write("lock");
        file->Flush();
        chmod(path.c_str(), 0666);
    }
    return file;
}

void VKioDirectory::Lock(char mode, bool wait)
{
    vk::ScopedSection thread(m_objThreadLock);
    if (m_pLockFile) {
        m_pLockFile->Lock(mode, wait); // this very thread holds the lock: it changes its mode
        return;
    }
    auto file = OpenLockFile(mode);
    file->Lock(mode, wait);
    m_pLockFile = std::move(file);
    m_objThreadLock.Lock(); // stays held until Unlock
}

void VKioDirectory::Unlock()
{
    vk::ScopedSection thread(m_objThreadLock);
    if (!m_pLockFile)
        return;
    const std::unique_ptr<VKioFile> file = std::move(m_pLockFile);
    file->Unlock();
    m_objThreadLock.Unlock();
}

int VKioDirectory::GetFiles(VKioFileList& list, const std::string& pattern, int skip, int limit) const
{
    return GetFiles(m_strPath, list, pattern, skip, limit);
}

int VKioDirectory::GetFiles(const std::string& path, VKioFileList& list, const std::string& pattern, int skip,
                            int limit)
{
    return List(path, list, pattern, skip, limit, Kinds::FilesOnly);
}

int VKioDirectory::GetAllFiles(VKioFileList& list, const std::string& pattern, int skip, int limit) const
{
    return GetAllFiles(m_strPath, list, pattern, skip, limit);
}

int VKioDirectory::GetAllFiles(const std::string& path, VKioFileList& list, const std::string& pattern, int skip,
                               int limit)
{
    return List(path, list, pattern, skip, limit, Kinds::WithDirectories);
}
