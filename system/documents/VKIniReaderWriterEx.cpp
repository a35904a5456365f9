#include "VKIniReaderWriterEx.h"

#include "VKioException.h"

#include <cstdio>

VKIniReaderWriterEx::VKIniReaderWriterEx(const std::string& path, bool useLocks, bool retryLocks)
    : IniReaderWriter(path, false, useLocks, retryLocks), m_file(path)
{
}

VKIniReaderWriterEx::~VKIniReaderWriterEx()
{
    try {
        close();
    } catch (const VKioException&) {
        // The descriptor goes with the file object; there is no one left to tell.
    }
}

bool VKIniReaderWriterEx::open(bool create)
{
    m_file.Open(create ? "w+" : "r+");
    return true;
}

void VKIniReaderWriterEx::close()
{
    unlock();
    m_file.Close();
}

bool VKIniReaderWriterEx::lock(bool shared)
{
    if (!isOpen() || m_bLocked)
        return m_bLocked;
    m_file.Lock(shared ? 'r' : 'w', retryLocks());
    m_bLocked = true;
    return true;
}

bool VKIniReaderWriterEx::unlock()
{
    if (!m_bLocked)
        return isOpen();
    m_bLocked = false;
    m_file.Unlock();
    return true;
}

bool VKIniReaderWriterEx::read()
{
    if (!isOpen())
        return false;
    reset();
    m_file.Rewind();
    unsigned char line[kLineBuffer];
    while (m_file.ReadLineEmpty(line, sizeof line) != -1)
        appendLine(reinterpret_cast<const char*>(line));
    setLoaded();
    return true;
}

bool VKIniReaderWriterEx::write()
{
    if (!isOpen())
        return false;
    const std::string text = toText();
    reserve(text.size());
    m_file.Rewind();
    m_file.Write(text);
    m_file.Flush();
    m_file.Truncate(static_cast<long>(text.size()));
    return true;
}

bool VKIniReaderWriterEx::write(const std::string& path)
{
    if (path.empty())
        return write();
    std::string target = path;
    return IniReaderWriter::write(&target);
}

/// Lengthens the file with line feeds, which no reader sees, before anything of it is overwritten: so a disk that is
/// full is met while the old contents are still whole.
void VKIniReaderWriterEx::reserve(std::size_t size)
{
    const auto present = static_cast<std::size_t>(m_file.GetSize());
    if (present >= size)
        return;
    m_file.Seek(0, SEEK_END);
    m_file.Write(std::string(size - present, '\n'));
    m_file.Flush();
}
