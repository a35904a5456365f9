#include "VKstringTokens.h"

#include "VKascii.h"
#include "VKstringCopy.h"
#include "VKstringTrim.h"

#include <algorithm>
#include <cstring>

namespace {

/// Takes the next non-empty token from the front of the text; empty when there is none.
std::string_view TakeToken(std::string_view& text, std::string_view delimiters)
{
    text.remove_prefix(std::min(text.find_first_not_of(delimiters), text.size()));
    const std::string_view token = text.substr(0, text.find_first_of(delimiters));
    text.remove_prefix(token.size());
    return token;
}

std::string_view TokenAt(std::string_view text, std::string_view delimiters, int index)
{
    std::string_view token = TakeToken(text, delimiters);
    for (; index > 0 && !token.empty(); --index)
        token = TakeToken(text, delimiters);
    return index == 0 ? token : std::string_view();
}

/// One argument from the front of the command line, which starts with no white space.
std::string TakeArgument(std::string_view& line)
{
    std::string argument;
    char quote = '\0';
    while (!line.empty() && (quote || !vk::IsSpace(line.front()))) {
        const char c = line.front();
        line.remove_prefix(1);
        if (c == '\\' && quote != '\'' && !line.empty()) {
            argument += line.front();
            line.remove_prefix(1);
        } else if (quote ? c == quote : c == '"' || c == '\'') {
            quote = quote ? '\0' : c;
        } else {
            argument += c;
        }
    }
    return argument;
}

} // namespace

std::vector<std::string> VKstringTokenize(const std::string& text, const std::string& delimiters)
{
    std::vector<std::string> tokens;
    std::string_view rest(text);
    for (std::string_view token = TakeToken(rest, delimiters); !token.empty(); token = TakeToken(rest, delimiters))
        tokens.emplace_back(token);
    return tokens;
}

std::vector<std::string> VKstringSplitString(const std::string& text, const std::string& separator)
{
    std::vector<std::string> parts;
    if (text.empty())
        return parts;
    std::size_t start = 0;
    for (std::size_t at = separator.empty() ? std::string::npos : text.find(separator); at != std::string::npos;
         at = text.find(separator, start)) {
        parts.push_back(text.substr(start, at - start));
        start = at + separator.size();
    }
    parts.push_back(text.substr(start));
    return parts;
}

std::string VKstringNStrTok(const std::string& text, const std::string& delimiters, int index)
{
    return std::string(TokenAt(text, delimiters, index));
}

char* VKutilNStrTok(const char* text, const char* delimiters, int index)
{
    const std::string_view token = TokenAt(vk::ViewOf(text), vk::ViewOf(delimiters), index);
    return token.empty() ? nullptr : vk::MallocText(token);
}

char* VKstringSafeStrTok(char* text, const char* delimiters, char** rest)
{
    if (!rest || !delimiters || (!text && !*rest))
        return nullptr;
    return strtok_r(text, delimiters, rest);
}

std::vector<std::string> BuildStringVector(const std::string& list, char separator)
{
    std::vector<std::string> parts;
    for (const std::string& part : VKstringSplitString(list, std::string(1, separator))) {
        const std::string_view kept = vk::Trimmed(part);
        if (!kept.empty())
            parts.emplace_back(kept);
    }
    return parts;
}

std::vector<std::string> BuildCommandLineArguments(const std::string& commandLine)
{
    std::vector<std::string> arguments;
    std::string_view rest = vk::Trimmed(commandLine, vk::kWhiteSpace, vk::Side::Left);
    while (!rest.empty()) {
        arguments.push_back(TakeArgument(rest));
        rest = vk::Trimmed(rest, vk::kWhiteSpace, vk::Side::Left);
    }
    return arguments;
}

std::string VKutilParseMajorJobID(const std::string& jobId) { return jobId.substr(0, jobId.find('_')); }
