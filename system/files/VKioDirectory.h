#pragma once

#include "VKconLock.h"
#include "VKioFile.h"

#include <ctime>
#include <memory>
#include <string>

/// A directory, its files and its lock: a file "lock" inside it, which no listing shows. What fails throws
/// VKioException with the path, unless an operation answers with a bool; such a one leaves errno.
class VKioDirectory
{
public:
    explicit VKioDirectory(const std::string& path);
    virtual ~VKioDirectory();
    VKioDirectory(const VKioDirectory&) = delete;
    VKioDirectory& operator=(const VKioDirectory&) = delete;

    const std::string& GetPath() const { return m_strPath; }

    static bool Create(const std::string& path);
    /// With every directory above it that is missing. True when the directory stands at the end.
    static bool CreateFullPath(const std::string& path);
    /// With `withFiles` its files go first, but no sub-directory: one that is left makes it fail.
    static bool Remove(const std::string& path, bool withFiles);
    /// Whether `name` is a sub-directory, or, without a name, whether the directory itself is one. The names "r" and
    /// "w" ask whether the directory itself is one that this process can list, or write.
    static bool Check(const std::string& directory, const std::string& name);
    /// Copies the tree below `from`, but its locks, into `to`, which is made when it is missing and may not lie inside.
    static bool Copy(const std::string& from, const std::string& to);

    /// Takes the directory's lock against all who use it: mode 'r' shared, 'w' exclusive. Throws "File Lock Failed"
    /// when it is not free and `wait` is false. One thread at a time holds it; it may take it again, one Unlock ends
    /// it.
    void Lock(char mode, bool wait);
    void Unlock();

    time_t GetCreateTime() const { return VKioFile::GetCreateTime(m_strPath); }
    time_t GetLastAccessTime() const { return VKioFile::GetLastAccessTime(m_strPath); }
    time_t GetLastModifyTime() const { return VKioFile::GetLastModifyTime(m_strPath); }

    /// Append the files whose names match the pattern, by name in order: `skip` are left out, and at most `limit` are
    /// taken (0: all). How many were added. GetAllFiles takes sub-directories too. Throw "Read Directory Failed".
    int GetFiles(VKioFileList& list, const std::string& pattern, int skip, int limit) const;
    static int GetFiles(const std::string& path, VKioFileList& list, const std::string& pattern, int skip, int limit);
    int GetAllFiles(VKioFileList& list, const std::string& pattern, int skip, int limit) const;
    static int GetAllFiles(const std::string& path, VKioFileList& list, const std::string& pattern, int skip,
                           int limit);

private:
    std::unique_ptr<VKioFile> OpenLockFile(char mode) const;

    std::string m_strPath;
    VKconLock m_objThreadLock;             ///< held from Lock to Unlock
    std::unique_ptr<VKioFile> m_pLockFile; ///< guarded by m_objThreadLock; null when the lock is not held
};
