#pragma once

#include "VKMXPConnIface.h"

#include <functional>
#include <string>
#include <sys/stat.h>
#include <vector>

namespace vk {

/// The encrypted copies that travel in place of a packet's files: made in "secure_files" under the temporary directory,
/// named by number, "_" and the file's own name; the second file of one name in a packet has the number 2. What stands
/// on the disk is the raw cipher text (AES-256-ECB under the file's secure key), never the clear text; an empty file
/// stays empty. While they are held no other transfer of this process uses copies of the same names. Files are worked
/// on piece by piece: what is held in memory does not grow with them.
///
/// Used by one thread; objects of several threads know of each other's names.
class SecureFiles
{
public:
    using FileList = VKMXPConnIface::FileList;

    /// Asked after each piece: true ends the work early.
    using Interrupt = std::function<bool()>;

    SecureFiles() = default;
    ~SecureFiles();
    SecureFiles(const SecureFiles&) = delete;
    SecureFiles& operator=(const SecureFiles&) = delete;

    /// Makes copies of these files under names that hold up nobody, so that Make need only rename them. They replace
    /// those that were made ahead before. False: there are none; Make will say why.
    bool MakeAhead(const FileList& files, const Interrupt& interrupt);

    /// Deletes what was made ahead.
    void DropAhead();

    /// Makes the copies and puts their paths into the list. False with the reason in error: the list is as it was and
    /// no copy is left. A reason that is empty says that another transfer holds a name for the moment, or that the work
    /// was interrupted.
    bool Make(FileList& files, std::string& error, const Interrupt& interrupt);

    /// Deletes the copies.
    void Delete();

    /// Leaves the copies on the disk and their names to others.
    void Release();

private:
    /// A copy made ahead, and what its file was then.
    struct Ahead
    {
        std::string path;
        struct stat state;
    };

    bool IsAheadOf(const FileList& files) const;

    std::vector<std::string> m_paths;
    FileList m_aheadOf;
    std::vector<Ahead> m_ahead;
};

} // namespace vk
