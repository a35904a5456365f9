#include "VKSQLite3Database.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>

/// \file
/// Text conditioning of VKSQLite3Database.

namespace {

/// Doubles quotes; with likeEscape, also puts a backslash before every "_" and "\".
std::string Conditioned(const std::string& text, bool likeEscape, int maxLen)
{
    std::string out;
    out.reserve(text.size() + 8);
    for (const char c : text) {
        if (c == '\'')
            out += '\'';
        else if (likeEscape && (c == '_' || c == '\\'))
            out += '\\';
        out += c;
    }
    if (maxLen > 0 && out.size() > static_cast<std::size_t>(maxLen))
        out.resize(static_cast<std::size_t>(maxLen));
    return out;
}

} // namespace

std::string VKSQLite3Database::CreateTablePath(const std::string& directory, const std::string& file)
{
    if (directory.empty())
        return file;
    const char last = directory.back();
    return last == '/' || last == '\\' ? directory + file : directory + "/" + file;
}

void VKSQLite3Database::PreprocessSqlString(char* text)
{
    if (text == nullptr)
        return;
    for (; *text != '\0'; ++text)
        if (*text == '\'')
            *text = '"';
}

void VKSQLite3Database::PreprocessSqlString(std::string& text) { text = Conditioned(text, false, 0); }

std::string VKSQLite3Database::PreprocessSqlStringCopy(const std::string& text, int maxLen)
{
    return Conditioned(text, false, maxLen);
}

std::string VKSQLite3Database::PreprocessSqlLikeStringCopy(const std::string& text, int maxLen)
{
    return Conditioned(text, true, maxLen);
}

std::string VKSQLite3Database::PrepareSqlQuery(int maxLen, const char* format, ...)
{
    std::string text(static_cast<std::size_t>(std::max(maxLen, 0)) + 1, '\0');
    va_list arguments;
    va_start(arguments, format);
    const int length = std::vsnprintf(text.data(), text.size(), format, arguments);
    va_end(arguments);
    text.resize(length < 0 ? 0 : std::min(static_cast<std::size_t>(length), text.size() - 1));
    return text;
}
