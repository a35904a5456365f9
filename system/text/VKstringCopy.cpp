#include "VKstringCopy.h"

#include "VKascii.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

void VKutilFree(void* memory) { std::free(memory); }

namespace vk {

char* MallocText(std::string_view text)
{
    char* const copy = static_cast<char*>(std::malloc(text.size() + 1));
    if (copy)
        CopyBounded(copy, text, text.size() + 1);
    return copy;
}

int CopyBounded(char* to, std::string_view from, std::size_t size)
{
    if (!to || size == 0)
        return -1;
    const std::size_t count = std::min(from.size(), size - 1);
    std::copy_n(from.data(), count, to);
    to[count] = '\0';
    return static_cast<int>(count);
}

std::string_view WholeCharacters(std::string_view text, std::size_t limit)
{
    if (text.size() <= limit)
        return text;
    // A character has at most three continuation bytes: if more stand here it is no UTF-8 and any cut is as good.
    const auto continues = [text](std::size_t at) { return (ToByte(text[at]) & 0xC0) == 0x80; };
    std::size_t cut = limit;
    while (cut > 0 && limit - cut < 3 && continues(cut))
        --cut;
    return text.substr(0, continues(cut) ? limit : cut);
}

} // namespace vk

int VKstringMsgCpy(char* to, const char* from, std::size_t size) { return from ? vk::CopyBounded(to, from, size) : -1; }

int VKstringMsgCpy2(char* to, const char* from, std::size_t size)
{
    return from && size > 0 ? vk::CopyBounded(to, vk::WholeCharacters(from, size - 1), size) : -1;
}

int VKstringCopyMsg(char* to, const std::string& from, std::size_t size)
{
    return VKstringMsgCpy2(to, from.c_str(), size);
}

char* VKutilStrMalloc(const char* text) { return text ? vk::MallocText(text) : nullptr; }

char* VKutilStrMallocCat(const char* first, const char* second)
{
    return vk::MallocText(std::string(vk::ViewOf(first)).append(vk::ViewOf(second)));
}

char* VKutilStrExpand(char* text, std::size_t extra)
{
    const std::size_t length = vk::ViewOf(text).size();
    char* const grown = static_cast<char*>(std::realloc(text, length + extra + 1));
    if (grown)
        grown[length] = '\0';
    return grown;
}

std::string VKstringJoin(const std::vector<std::string>& parts, const std::string& separator)
{
    std::string out;
    for (const std::string& part : parts) {
        if (&part != &parts.front())
            out += separator;
        out += part;
    }
    return out;
}

char* VKutilStrJoin(const char* const* parts, int count, const char* separator)
{
    std::vector<std::string> all;
    for (int i = 0; parts && i < count; ++i)
        all.emplace_back(vk::ViewOf(parts[i]));
    return vk::MallocText(VKstringJoin(all, NullToEmpty(separator)));
}
