#include "VKstringPath.h"

#include "VKascii.h"
#include "VKstringCopy.h"
#include "VKstringReplace.h"
#include "VKstringTrim.h"

#include <cstring>

namespace {

std::string_view FileNameOf(std::string_view path)
{
    return path.substr(path.rfind('/') + 1); // npos + 1 is 0: the whole path
}

} // namespace

std::string VKstringCreatePath(const std::string& directory, const std::string& name)
{
    if (directory.empty() || name.empty())
        return directory + name;
    std::string path(vk::Trimmed(directory, "/", vk::Side::Right));
    path += '/';
    return path.append(vk::Trimmed(name, "/", vk::Side::Left));
}

char* VKutilCreatePath(const char* directory, const char* name)
{
    return vk::MallocText(VKstringCreatePath(NullToEmpty(directory), NullToEmpty(name)));
}

int VKutilCreatePathEx(char* path, int size, const char* directory, const char* name)
{
    if (!path || size < 1)
        return -1;
    const std::string whole = VKstringCreatePath(NullToEmpty(directory), NullToEmpty(name));
    const std::size_t room = static_cast<std::size_t>(size);
    const bool fits = whole.size() < room;
    const int length = vk::CopyBounded(path, fits ? std::string_view(whole) : std::string_view(), room);
    return fits ? length : -1;
}

std::string GetFileName(const std::string& path) { return std::string(FileNameOf(path)); }

const char* VKutilGetFileName(const char* path) { return path ? FileNameOf(path).data() : nullptr; }

const char* VKutilGetFileExtension(const char* path)
{
    if (!path)
        return nullptr;
    const std::string_view name = FileNameOf(path);
    const std::size_t dot = name.rfind('.');
    return dot == std::string_view::npos || dot == 0 ? name.data() + name.size() : name.data() + dot + 1;
}

std::string GetLastSubDirFromPath(const std::string& path)
{
    return std::string(FileNameOf(vk::Trimmed(path, "/", vk::Side::Right)));
}

char* VKutilGetLastSubDirFromPath(const char* path)
{
    return path ? vk::MallocText(GetLastSubDirFromPath(path)) : nullptr;
}

char* VKstringPathFilter(char* path) { return VKstringReplaceChar(path, '\\', '/'); }
