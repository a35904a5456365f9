#pragma once

#include "VKMXPConnIface.h"

#include <string>

class VKLogInterface;

namespace vk {

/// The encrypted copies that travel in place of a packet's files: made in "secure_files" under the temporary directory,
/// named by number, "_" and the file's own name; the second file of one name in a packet has the number 2. What stands on
/// the disk is the raw cipher text (AES-256-ECB under the file's secure key), never the clear text; an empty file stays
/// empty. While they are held no other transfer of this process uses copies of the same names.
class SecureFiles
{
public:
    SecureFiles() = default;
    ~SecureFiles() { Release(); }
    SecureFiles(const SecureFiles&) = delete;
    SecureFiles& operator=(const SecureFiles&) = delete;

    /// Makes the copies and puts their paths into the list. False with the reason in error: the list is as it was and no
    /// copy is left. A reason that is empty says that another transfer holds a name for the moment.
    bool Make(VKMXPConnIface::FileList& files, std::string& error);

    /// Deletes the copies.
    void Delete();

    /// Leaves the copies on the disk and their names to others.
    void Release();

private:
    std::vector<std::string> m_paths;
};

} // namespace vk
