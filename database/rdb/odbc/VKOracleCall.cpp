#include "VKOracleCall.h"

#include <cctype>
#include <strings.h>
#include <vector>

namespace vk {

namespace {

bool IsWordCharacter(char c) { return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_'; }

/// The word that begins at or behind a position; empty when something else comes first.
std::string WordAt(const std::string& text, std::size_t at)
{
    while (at < text.size() && (std::isspace(static_cast<unsigned char>(text[at])) != 0 || text[at] == '{'))
        ++at;
    std::size_t end = at;
    while (end < text.size() && IsWordCharacter(text[end]))
        ++end;
    return text.substr(at, end - at);
}

bool IsCall(const std::string& text)
{
    const std::string word = WordAt(text, 0);
    for (const char* begins : {"call", "begin", "exec", "execute"})
        if (strcasecmp(word.c_str(), begins) == 0)
            return true;
    return false;
}

/// The name of a cursor parameter, with or without the colon of a bound one; empty for any other parameter.
std::string CursorName(const std::string& parameter)
{
    const std::size_t from = parameter.find_first_not_of(" \t\r\n:");
    if (from == std::string::npos)
        return "";
    const std::string name = parameter.substr(from, parameter.find_last_not_of(" \t\r\n") + 1 - from);
    for (const char* cursor : {"vk_cursor", "vk_cursor1", "vk_cursor2"})
        if (strcasecmp(name.c_str(), cursor) == 0)
            return name;
    return "";
}

/// The parameters of the outermost brackets, and where these stand.
struct Parameters
{
    std::size_t open = std::string::npos;
    std::size_t close = std::string::npos;
    std::vector<std::string> texts;
};

Parameters FindParameters(const std::string& text)
{
    Parameters found;
    std::size_t from = 0;
    int depth = 0;
    bool quoted = false;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const char c = text[at];
        if (c == '\'')
            quoted = !quoted; // a doubled quote closes and opens again
        if (quoted)
            continue;
        if (c == '(' && ++depth == 1) {
            found.open = at;
            from = at + 1;
        } else if (depth == 1 && (c == ',' || c == ')')) {
            found.texts.push_back(text.substr(from, at - from));
            from = at + 1;
        }
        if (c == ')' && --depth == 0) {
            found.close = at;
            return found;
        }
    }
    return found;
}

} // namespace

OracleCall WithoutCursorParameters(const std::string& text)
{
    OracleCall call{text, ""};
    const Parameters parameters = IsCall(text) ? FindParameters(text) : Parameters{};
    if (parameters.close == std::string::npos)
        return call;
    std::string kept;
    bool first = true;
    for (const std::string& parameter : parameters.texts) {
        const std::string cursor = CursorName(parameter);
        if (!cursor.empty()) {
            if (call.cursor.empty())
                call.cursor = cursor;
            continue;
        }
        kept += (first ? "" : ",") + parameter;
        first = false;
    }
    if (!call.cursor.empty())
        call.text = text.substr(0, parameters.open + 1) + kept + text.substr(parameters.close);
    return call;
}

} // namespace vk
