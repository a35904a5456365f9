#include "VKfile.h"

#include "VKfileHandle.h"
#include "VKioFile.h"

#include <cerrno>
#include <cstring>
#include <string_view>
#include <fcntl.h>

struct file_find_t
{
    vk::DirectoryStream directory;
    std::string pattern;
};

namespace {

bool IsDots(const char* name) { return !std::strcmp(name, ".") || !std::strcmp(name, ".."); }

void Describe(DIR* directory, const char* name, finddata_t& found)
{
    found = {};
    std::string_view(name).copy(found.name, sizeof found.name - 1); // the end is there: found was cleared
    struct stat facts = {};
    if (fstatat(dirfd(directory), name, &facts, 0) != 0)
        return; // gone meanwhile: the name is what is known
    found.directory = S_ISDIR(facts.st_mode);
    found.size = facts.st_size;
    found.modified = facts.st_mtime;
}

} // namespace

file_find_t* VKfileFindFirst(const char* directory, const char* pattern, finddata_t* found)
{
    if (!directory || !pattern) {
        errno = EINVAL;
        return nullptr;
    }
    auto search = std::make_unique<file_find_t>();
    search->directory.reset(opendir(*directory ? directory : "."));
    search->pattern = pattern;
    if (!search->directory || VKfileFindNext(search.get(), found) != 0)
        return nullptr;
    return search.release(); // the caller's, until VKfileFindClose
}

int VKfileFindNext(file_find_t* search, finddata_t* found)
{
    if (!search)
        return -1;
    while (const dirent* entry = readdir(search->directory.get())) {
        if (IsDots(entry->d_name) || !VKioFile::DoesFileNameContainPattern(entry->d_name, search->pattern.c_str()))
            continue;
        if (found)
            Describe(search->directory.get(), entry->d_name, *found);
        return 0;
    }
    return -1;
}

int VKfileFindClose(file_find_t* search)
{
    const std::unique_ptr<file_find_t> owner(search);
    return owner ? 0 : -1;
}

bool VKfileFindFile(const char* directory, const char* pattern, finddata_t* found)
{
    const std::unique_ptr<file_find_t> search(VKfileFindFirst(directory, pattern, found));
    return search != nullptr;
}
