// What is asked and done about files by their path.
#include "VKioFile.h"

#include "VKioException.h"
#include "VKstringPath.h"
#include "VKstringPattern.h"
#include "VKsystemError.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

[[noreturn]] void FailOn(const std::string& path, int line, const char* message)
{
    throw VKioException(path, "../src/VKioFile", line, message, VKgetLastError());
}

struct stat FactsOf(const std::string& path)
{
    struct stat facts = {};
    if (stat(path.c_str(), &facts) != 0)
        FailOn(path, __LINE__, "File Get State Failed");
    return facts;
}

constexpr timespec kNow = {0, UTIME_NOW};
constexpr timespec kKeep = {0, UTIME_OMIT};

void SetTimes(const std::string& path, timespec access, timespec modify)
{
    const timespec times[2] = {access, modify};
    if (utimensat(AT_FDCWD, path.c_str(), times, 0) != 0)
        FailOn(path, __LINE__, "File utime Failed");
}

} // namespace

std::string VKioFile::GetFileName() const { return GetFileName(m_strPath); }
std::string VKioFile::GetFileName(const std::string& path) { return ::GetFileName(path); }

long VKioFile::GetSize(const std::string& path) { return FactsOf(path).st_size; }

bool VKioFile::IsDirectory(const std::string& path)
{
    struct stat facts = {};
    return stat(path.c_str(), &facts) == 0 && S_ISDIR(facts.st_mode);
}

time_t VKioFile::GetCreateTime(const std::string& path) { return FactsOf(path).st_ctime; }
time_t VKioFile::GetLastAccessTime(const std::string& path) { return FactsOf(path).st_atime; }
time_t VKioFile::GetLastModifyTime(const std::string& path) { return FactsOf(path).st_mtime; }

void VKioFile::SetTime(const std::string& path, time_t access, time_t modify)
{
    SetTimes(path, {access, 0}, {modify, 0});
}
void VKioFile::SetTime2Now(const std::string& path) { SetTimes(path, kNow, kNow); }
void VKioFile::SetAccessTime(const std::string& path, time_t access) { SetTimes(path, {access, 0}, kKeep); }
void VKioFile::SetModifyTime(const std::string& path, time_t modify) { SetTimes(path, kKeep, {modify, 0}); }

bool VKioFile::DeleteFile(const std::string& path) { return unlink(path.c_str()) == 0; }

bool VKioFile::RenameFile(const std::string& from, const std::string& to)
{
    return rename(from.c_str(), to.c_str()) == 0;
}

bool VKioFile::IsExisting(const std::string& path)
{
    struct stat facts = {};
    return stat(path.c_str(), &facts) == 0;
}

bool VKioFile::Check(const std::string& directory, const std::string& name)
{
    return CheckFile(CreatePath(directory, name));
}

bool VKioFile::CheckFile(const std::string& path) { return IsExisting(path) && !IsDirectory(path); }

bool VKioFile::Copy(const std::string& from, const std::string& to)
{
    VKioFile source(from);
    source.Open("rb");
    const struct stat origin = FactsOf(from);
    struct stat place = {};
    if (stat(to.c_str(), &place) == 0 && origin.st_dev == place.st_dev && origin.st_ino == place.st_ino) {
        errno = EINVAL;
        return false; // opening the target would empty it
    }
    VKioFile target(to);
    target.Open("wb");
    unsigned char buffer[65536];
    while (const unsigned int got = source.Read(buffer, sizeof buffer))
        target.Write(buffer, got);
    target.Close();
    return true;
}

bool VKioFile::SetReadOnly(const std::string& path, bool readOnly)
{
    struct stat facts = {};
    if (stat(path.c_str(), &facts) != 0)
        return false;
    constexpr mode_t kAnyWrite = S_IWUSR | S_IWGRP | S_IWOTH;
    const mode_t mode = readOnly ? facts.st_mode & ~kAnyWrite : facts.st_mode | S_IWUSR;
    return chmod(path.c_str(), mode & 07777) == 0;
}

std::string VKioFile::CreatePath(const std::string& directory, const std::string& name)
{
    return VKstringCreatePath(directory, name);
}

void VKioFile::CleanFileList(VKioFileList& list)
{
    for (VKioFile* file : list)
        delete file;
    list.clear();
}

bool VKioFile::DoesFileNameContainPattern(const char* name, const char* pattern)
{
    return name && *name && pattern && *pattern && VKstrContainPattern(name, pattern, false);
}
