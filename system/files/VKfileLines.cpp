#include "VKfile.h"

#include "VKfileHandle.h"

#include <cstdlib>
#include <cstring>
#include <string_view>

namespace {

bool ReadAll(int fd, std::string& text)
{
    char buffer[65536];
    ssize_t got = 0;
    while ((got = VKfileRead(fd, buffer, sizeof buffer)) > 0)
        text.append(buffer, static_cast<std::size_t>(got));
    return got == 0;
}

char* Duplicate(std::string_view text)
{
    auto* copy = static_cast<char*>(malloc(text.size() + 1));
    if (copy) {
        std::memcpy(copy, text.data(), text.size());
        copy[text.size()] = '\0';
    }
    return copy;
}

/// Appends a line; the array belongs to the caller, grown or not.
bool AddLine(std::string_view line, int& count, char**& lines)
{
    if (!line.empty() && line.back() == '\r')
        line.remove_suffix(1);
    if ((count & (count - 1)) == 0) { // full: the array holds a power of two
        const std::size_t places = count ? static_cast<std::size_t>(count) * 2 : 1;
        auto* grown = static_cast<char**>(realloc(lines, places * sizeof(char*)));
        if (!grown)
            return false;
        lines = grown;
    }
    lines[count] = Duplicate(line);
    return lines[count] && ++count;
}

bool SplitLines(std::string_view text, int& count, char**& lines)
{
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        if (!AddLine(text.substr(0, end), count, lines))
            return false;
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    }
    return true;
}

int ReadLines(int fd, int* count, char*** lines)
{
    const vk::FileHandle file(fd);
    *count = 0;
    *lines = nullptr;
    std::string text;
    if (file && ReadAll(fd, text) && SplitLines(text, *count, *lines))
        return 0;
    VKfileFreeLines(*count, *lines);
    *count = 0;
    *lines = nullptr;
    return -1;
}

} // namespace

int VKfileReadFileLines(const char* path, int* count, char*** lines)
{
    return ReadLines(VKfileFOpen(path, "r"), count, lines);
}

int VKfileReadFileLinesWithLock(const char* path, int* count, char*** lines)
{
    return ReadLines(VKfileFOpenWithLock(path, "r", 1), count, lines);
}

void VKfileFreeLines(int count, char** lines)
{
    for (int i = 0; i < count; ++i)
        free(lines[i]);
    free(lines);
}
