#include "ConfigurationFile.h"

#include "VKioException.h"
#include "VKioFile.h"
#include "VKstringTrim.h"

#include <cstdio>

namespace vk {

namespace {

/// Lengthens a file with zeros before anything of it is overwritten, so that a full disk is met while the old content
/// is whole.
void Reserve(VKioFile& file, long size)
{
    const long present = file.GetSize();
    if (present >= size)
        return;
    try {
        file.Seek(0, SEEK_END);
        file.Write(std::string(static_cast<std::size_t>(size - present), '\0'));
        file.Flush();
    } catch (const VKioException&) {
        file.Truncate(present);
        throw;
    }
}

void Replace(VKioFile& file, std::string_view content)
{
    const long size = static_cast<long>(content.size());
    file.Lock('w', true);
    Reserve(file, size);
    file.Rewind();
    file.Write(reinterpret_cast<const unsigned char*>(content.data()), static_cast<unsigned int>(content.size()));
    file.Flush();
    file.Truncate(size);
    file.Unlock();
    file.Close();
}

/// Runs `read` on the opened and locked file; false when any of it fails.
template <class Read> bool ReadLocked(const std::string& path, Read read)
{
    try {
        VKioFile file(path);
        file.Open("rb");
        file.Lock('r', true);
        read(file);
        file.Unlock();
        return true;
    } catch (const VKioException&) {
        return false;
    }
}

} // namespace

bool ReadConfigurationLines(const std::string& path, std::size_t limit,
                            const std::function<void(std::string_view)>& take)
{
    return ReadLocked(path, [&](VKioFile& file) {
        std::string line;
        while (file.ReadLine(line) > 0)
            take(Trimmed(line, "\r\n", Side::Right).substr(0, limit));
    });
}

bool ReadConfigurationText(const std::string& path, std::string& text)
{
    return ReadLocked(path, [&](VKioFile& file) { file.Read(text); });
}

long ReadConfigurationBytes(const std::string& path, void* bytes, std::size_t size)
{
    long got = 0;
    const bool read = ReadLocked(path, [&](VKioFile& file) {
        got = file.Read(static_cast<unsigned char*>(bytes), static_cast<unsigned int>(size));
    });
    return read ? got : -1;
}

bool WriteConfigurationFile(const std::string& path, std::string_view content)
{
    const bool isNew = !VKioFile::IsExisting(path);
    try {
        VKioFile file(path);
        file.Open(isNew ? "w" : "r+");
        Replace(file, content);
        return true;
    } catch (const VKioException&) {
        if (isNew)
            VKioFile::DeleteFile(path); // no empty file where there was none
        return false;
    }
}

} // namespace vk
