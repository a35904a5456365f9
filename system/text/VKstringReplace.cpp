#include "VKstringReplace.h"

#include "VKascii.h"

#include <algorithm>
#include <cstring>

char* VKstringReplaceChar(char* text, char from, char to)
{
    if (text)
        std::replace(text, text + std::strlen(text), from, to);
    return text;
}

std::string& VKstringReplaceChar(std::string& text, char from, char to)
{
    std::replace(text.begin(), text.end(), from, to);
    return text;
}

std::string VKstringReplaceChar(const std::string& text, char from, const std::string& to)
{
    return VKstringReplaceStr(text, std::string(1, from), to);
}

std::string& VKstringReplaceCharAnyOf(std::string& text, const std::string& set, char to)
{
    const auto inSet = [&set](char c) { return set.find(c) != std::string::npos; };
    std::replace_if(text.begin(), text.end(), inSet, to);
    return text;
}

std::string& findandreplace(std::string& text, const std::string& from, const std::string& to)
{
    text = VKstringReplaceStr(text, from, to);
    return text;
}

std::string VKstringReplaceStr(const std::string& text, const std::string& from, const std::string& to)
{
    std::string out;
    std::size_t run = 0;
    for (std::size_t at = from.empty() ? std::string::npos : text.find(from); at != std::string::npos;
         at = text.find(from, run)) {
        out.append(text, run, at - run).append(to);
        run = at + from.size();
    }
    return out.append(text, run);
}

std::string VKstringEscapePrintfString(const std::string& text) { return VKstringReplaceChar(text, '%', "%%"); }

std::string VKstringReplaceColon(const std::string& text)
{
    std::string out(text);
    return VKstringReplaceChar(out, ':', '-');
}

std::string VKstringRemoveSpaceChars(const std::string& text)
{
    std::string out(text);
    out.erase(std::remove_if(out.begin(), out.end(), vk::IsSpace), out.end());
    return out;
}

char* VKstringRemoveSpaceChars(char* text)
{
    if (text)
        *std::remove_if(text, text + std::strlen(text), vk::IsSpace) = '\0';
    return text;
}
