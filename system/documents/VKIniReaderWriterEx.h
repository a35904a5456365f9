#pragma once

#include "IniReaderWriter.h"
#include "VKioFile.h"

/// An INI file that stays open, so that one lock can be held across reading, changing and writing it. Failures of the
/// file pass to the caller as VKioException.
class VKIniReaderWriterEx : public IniReaderWriter
{
public:
    /// Opens nothing. useLocks and retryLocks serve write(string*); retryLocks also makes lock() wait for its turn.
    VKIniReaderWriterEx(const std::string& path, bool useLocks, bool retryLocks);

    /// Reads the open file from its start, under whatever lock the caller holds. False when the file is not open.
    bool read() override;
    using IniReaderWriter::write;
    /// Replaces the contents of the open file. A disk that is full leaves the old contents whole and throws.
    virtual bool write();
    /// Writes to another file; an empty path means the open one.
    virtual bool write(const std::string& path);
    virtual ~VKIniReaderWriterEx();

    /// create empties the file or makes it ("w+"); without it the file must exist ("r+").
    bool open(bool create);
    void close();
    bool isOpen() const { return m_file.IsOpen(); }

    /// Takes a whole-file lock. True when it is held, also when it was held before, in whichever mode; false when the
    /// file is not open.
    bool lock(bool shared);
    bool unlock();
    bool islocked() const { return m_bLocked; }

private:
    void reserve(std::size_t size);

    VKioFile m_file;
    bool m_bLocked = false;
};
