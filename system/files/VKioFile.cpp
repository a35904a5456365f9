#include "VKioFile.h"

#include "VKioException.h"
#include "VKprintf.h"
#include "VKsystemError.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

VKioFile::VKioFile(const std::string& path) : m_strPath(path) {}

VKioFile::VKioFile(FILE* stream, const std::string& path, const std::string& mode)
    : m_pStream(stream), m_strPath(path), m_strMode(mode)
{
}

VKioFile::~VKioFile()
{
    if (m_pStream)
        fclose(m_pStream);
    ReleaseThread();
}

/// Lets go of the thread lock, however often Lock took it.
void VKioFile::ReleaseThread()
{
    for (; m_iLocked > 0; --m_iLocked)
        m_objThreadLock.Unlock();
}

/// Throws with the text of errno.
void VKioFile::Fail(int line, const char* message) const
{
    throw VKioException(m_strPath, "../src/VKioFile", line, message, VKgetLastError());
}

void VKioFile::NeedStream(int line, const char* message) const
{
    if (m_pStream)
        return;
    errno = EBADF;
    Fail(line, message);
}

int VKioFile::Number(int line) const
{
    const int number = fileno(m_pStream);
    if (number < 0)
        Fail(line, "File Get File Number Failed");
    return number;
}

void VKioFile::Open(const std::string& mode)
{
    if (m_pStream) {
        errno = EBUSY;
        Fail(__LINE__, "File Was Already Open");
    }
    m_pStream = fopen(m_strPath.c_str(), (mode + "e").c_str());
    if (!m_pStream)
        Fail(__LINE__, "File Open Failed");
    m_strMode = mode;
}

void VKioFile::Close()
{
    if (!m_pStream)
        return;
    FILE* stream = m_pStream;
    m_pStream = nullptr;
    const bool written = fclose(stream) == 0; // drops the file's lock too
    ReleaseThread();
    if (!written)
        Fail(__LINE__, "File Flush Failed");
}

void VKioFile::Flush()
{
    if (!m_pStream || fflush(m_pStream) != 0)
        Fail(__LINE__, "File Flush Failed");
}

unsigned int VKioFile::Read(unsigned char* buffer, unsigned int size)
{
    NeedStream(__LINE__, "File not opened for reading");
    if (!buffer)
        Fail(__LINE__, "Invalid Buffer Pointer");
    const std::size_t got = fread(buffer, 1, size, m_pStream);
    if (got < size && ferror(m_pStream)) {
        clearerr(m_pStream);
        Fail(__LINE__, "File Read Failed");
    }
    return static_cast<unsigned int>(got);
}

unsigned int VKioFile::Read(std::string& text)
{
    text.clear();
    unsigned char buffer[16384];
    while (const unsigned int got = Read(buffer, sizeof buffer))
        text.append(reinterpret_cast<const char*>(buffer), got);
    return static_cast<unsigned int>(text.size());
}

/// False at the end of the file. The buffer is all zeros behind the line.
bool VKioFile::GetLine(unsigned char* buffer, unsigned int size)
{
    NeedStream(__LINE__, "File not opened for reading");
    if (!buffer)
        Fail(__LINE__, "Invalid Buffer Pointer");
    std::memset(buffer, 0, size);
    const int limit = static_cast<int>(std::min<unsigned int>(size, INT_MAX));
    if (fgets(reinterpret_cast<char*>(buffer), limit, m_pStream))
        return true;
    if (ferror(m_pStream)) {
        clearerr(m_pStream);
        Fail(__LINE__, "File Get Lines Failed");
    }
    return false;
}

unsigned int VKioFile::ReadLine(unsigned char* buffer, unsigned int size)
{
    if (size == 0 || !GetLine(buffer, size))
        return 0;
    return static_cast<unsigned int>(std::strlen(reinterpret_cast<const char*>(buffer)));
}

int VKioFile::ReadLineEmpty(unsigned char* buffer, unsigned int size)
{
    if (size == 0)
        return 0;
    return GetLine(buffer, size) ? static_cast<int>(std::strlen(reinterpret_cast<const char*>(buffer))) : -1;
}

unsigned int VKioFile::ReadLine(std::string& line)
{
    NeedStream(__LINE__, "File not opened for reading");
    line.clear();
    char* buffer = nullptr;
    std::size_t room = 0;
    const ssize_t length = getline(&buffer, &room, m_pStream);
    const std::unique_ptr<char, decltype(&free)> owner(buffer, &free);
    if (length > 0)
        line.assign(buffer, static_cast<std::size_t>(length));
    else if (ferror(m_pStream)) {
        clearerr(m_pStream);
        Fail(__LINE__, "File Get Lines Failed");
    }
    return static_cast<unsigned int>(line.size());
}

unsigned int VKioFile::Write(const unsigned char* buffer, unsigned int size)
{
    if (!buffer)
        Fail(__LINE__, "Invalid Buffer Pointer");
    NeedStream(__LINE__, "File Write Failed");
    if (fwrite(buffer, 1, size, m_pStream) != size)
        Fail(__LINE__, "File Write Failed");
    return size;
}

unsigned int VKioFile::Write(const std::string& text)
{
    NeedStream(__LINE__, "File not opened for writting");
    return Write(reinterpret_cast<const unsigned char*>(text.data()), static_cast<unsigned int>(text.size()));
}

unsigned int VKioFile::PrintF(const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const std::string text = vk::FormatV(format, arguments);
    va_end(arguments);
    return Write(text);
}

void VKioFile::Truncate(long size)
{
    NeedStream(__LINE__, "File not opened for reading");
    const int number = Number(__LINE__);
    Flush(); // else what is still in the buffer would lengthen the file again
    if (ftruncate(number, size) != 0)
        Fail(__LINE__, "File Truncate Failed");
}

void VKioFile::Rewind()
{
    if (m_pStream)
        rewind(m_pStream);
}

void VKioFile::Seek(unsigned int offset, unsigned int whence)
{
    NeedStream(__LINE__, "File not opened for reading");
    if (fseek(m_pStream, static_cast<long>(offset), static_cast<int>(whence)) != 0)
        Fail(__LINE__, "File Seek Failed");
}

long VKioFile::GetSize()
{
    if (!m_pStream)
        return GetSize(m_strPath);
    fflush(m_pStream);
    struct stat facts = {};
    if (fstat(Number(__LINE__), &facts) != 0)
        Fail(__LINE__, "File Get State Failed");
    return facts.st_size;
}

int VKioFile::SetFileLock(short type, bool wait)
{
    struct flock lock = {};
    lock.l_type = type;
    lock.l_whence = SEEK_SET;
    lock.l_pid = getpid();
    const int number = Number(__LINE__);
    int result = fcntl(number, wait ? F_SETLKW : F_SETLK, &lock);
    while (result == -1 && errno == EINTR)
        result = fcntl(number, wait ? F_SETLKW : F_SETLK, &lock);
    return result;
}

void VKioFile::Lock(char mode, bool wait)
{
    if (!m_pStream)
        return;
    Number(__LINE__);
    ThreadLock();
    rewind(m_pStream); // also forgets what was read ahead
    const short type = mode == 'r' ? F_RDLCK : mode == 'w' ? F_WRLCK : F_UNLCK;
    if (SetFileLock(type, wait) != 0) {
        const int reason = errno;
        ThreadUnlock();
        errno = reason;
        Fail(__LINE__, "File Lock Failed");
    }
    ++m_iLocked;
}

void VKioFile::Unlock()
{
    if (m_pStream) {
        rewind(m_pStream); // writes what is in the buffer while the lock is still held
        SetFileLock(F_UNLCK, false);
    }
    if (m_iLocked > 0) {
        --m_iLocked;
        m_objThreadLock.Unlock();
    }
}

void VKioFile::ThreadLock() { m_objThreadLock.Lock(); }
void VKioFile::ThreadUnlock() { m_objThreadLock.Unlock(); }
