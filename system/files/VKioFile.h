#pragma once

#include "VKconLock.h"

#include <cstdio>
#include <ctime>
#include <string>
#include <vector>

class VKioFile;

/// Files that a listing found; the caller owns them and frees them with VKioFile::CleanFileList.
using VKioFileList = std::vector<VKioFile*>;

/// A file over a standard stream. What fails throws VKioException with the path, unless an operation answers with a
/// bool; such a one leaves errno. One thread at a time, but for the lock, which also keeps the threads of this process
/// from sharing a file's lock through one object.
class VKioFile
{
public:
    /// Opens nothing.
    explicit VKioFile(const std::string& path);
    /// Adopts an open stream.
    VKioFile(FILE* stream, const std::string& path, const std::string& mode);
    /// Closes; what cannot be written then is lost without a word, so Close what was written.
    virtual ~VKioFile();
    VKioFile(const VKioFile&) = delete;
    VKioFile& operator=(const VKioFile&) = delete;

    /// Modes as fopen has them. Throws "File Was Already Open", which stays open then, and "File Open Failed".
    void Open(const std::string& mode);
    /// Throws "File Flush Failed" when what was written did not reach the disk; the file is closed then too.
    void Close();
    void Flush();
    bool IsOpen() const { return m_pStream != nullptr; }

    /// At most `size` bytes; how many there were, 0 at the end. The string form takes all that is left.
    unsigned int Read(unsigned char* buffer, unsigned int size);
    unsigned int Read(std::string& text);
    /// A line with its line feed, cut at size - 1 bytes by the form with a buffer; its length, 0 at the end.
    unsigned int ReadLine(unsigned char* buffer, unsigned int size);
    unsigned int ReadLine(std::string& line);
    /// The same, but -1 at the end.
    int ReadLineEmpty(unsigned char* buffer, unsigned int size);

    /// Write all of it; how many bytes.
    unsigned int Write(const unsigned char* buffer, unsigned int size);
    unsigned int Write(const std::string& text);
    unsigned int PrintF(const char* format, ...) __attribute__((format(printf, 2, 3)));
    /// Cuts the open file, or lengthens it with zeros.
    void Truncate(long size);

    void Rewind();
    /// `whence` is SEEK_SET, SEEK_CUR or SEEK_END.
    void Seek(unsigned int offset, unsigned int whence);

    /// Locks the whole open file: mode 'r' shared, 'w' exclusive, any other letter unlocks; the position goes to 0, and
    /// what is read after it is what the file holds now. Holds the thread lock until Unlock. Does nothing without an
    /// open file; throws "File Lock Failed" when the lock is not free and `wait` is false. Advisory.
    void Lock(char mode, bool wait);
    void Unlock();
    void ThreadLock();
    void ThreadUnlock();

    const std::string& GetPath() const { return m_strPath; }
    /// The last name of the path.
    std::string GetFileName() const;
    static std::string GetFileName(const std::string& path);
    /// In bytes, with what was written and not yet flushed.
    long GetSize();
    static long GetSize(const std::string& path);
    bool IsDirectory() const { return IsDirectory(m_strPath); }
    static bool IsDirectory(const std::string& path);

    // Times are seconds since the epoch. "Create" is the time of the last change of the file's attributes.
    time_t GetCreateTime() const { return GetCreateTime(m_strPath); }
    static time_t GetCreateTime(const std::string& path);
    time_t GetLastAccessTime() const { return GetLastAccessTime(m_strPath); }
    static time_t GetLastAccessTime(const std::string& path);
    time_t GetLastModifyTime() const { return GetLastModifyTime(m_strPath); }
    static time_t GetLastModifyTime(const std::string& path);
    void SetTime(time_t access, time_t modify) { SetTime(m_strPath, access, modify); }
    static void SetTime(const std::string& path, time_t access, time_t modify);
    void SetTime2Now() { SetTime2Now(m_strPath); }
    static void SetTime2Now(const std::string& path);
    void SetAccessTime(time_t access) { SetAccessTime(m_strPath, access); }
    static void SetAccessTime(const std::string& path, time_t access);
    void SetModifyTime(time_t modify) { SetModifyTime(m_strPath, modify); }
    static void SetModifyTime(const std::string& path, time_t modify);

    bool DeleteFile() { return DeleteFile(m_strPath); }
    static bool DeleteFile(const std::string& path);
    static bool RenameFile(const std::string& from, const std::string& to);
    static bool IsExisting(const std::string& path);
    /// Whether there is a file, no directory, of that name.
    static bool Check(const std::string& directory, const std::string& name);
    static bool CheckFile(const std::string& path);
    /// Copies the content over `to`. Throws; false only for a file onto itself.
    static bool Copy(const std::string& from, const std::string& to);
    static bool SetReadOnly(const std::string& path, bool readOnly);
    static std::string CreatePath(const std::string& directory, const std::string& name);
    static void CleanFileList(VKioFileList& list);
    /// "*" in the pattern stands for any text; false for a null or empty name or pattern.
    static bool DoesFileNameContainPattern(const char* name, const char* pattern);

private:
    [[noreturn]] void Fail(int line, const char* message) const;
    void NeedStream(int line, const char* message) const;
    int Number(int line) const;
    bool GetLine(unsigned char* buffer, unsigned int size);
    int SetFileLock(short type, bool wait);
    void ReleaseThread();

    FILE* m_pStream = nullptr; ///< null when closed
    std::string m_strPath;
    std::string m_strMode;
    VKconLock m_objThreadLock;
    int m_iLocked = 0; ///< how often Lock took the thread lock; guarded by it
};
