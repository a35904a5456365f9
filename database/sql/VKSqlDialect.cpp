#include "VKSqlDialect.h"

#include "VKRecordText.h"

namespace vk {

namespace {

std::string Escaped(std::string_view text, std::string_view escaped)
{
    std::string out;
    out.reserve(text.size() + 8);
    for (const char c : text) {
        if (c == '\'')
            out += '\'';
        else if (escaped.find(c) != std::string_view::npos)
            out += '\\';
        out += c;
    }
    return out;
}

} // namespace

std::string SqlDialect::Text(std::string_view value) const
{
    RequireFits(value, std::string_view::npos, "a value"); // a zero byte would end the statement inside the value
    return "'" + Escaped(value, "") + "'";
}

/// "%" stays a wild card for whoever types a filter.
std::string SqlDialect::LikeText(std::string_view text) const { return Escaped(text, "_\\"); }

std::string SqlDialect::EqualsNoCase(std::string_view column, std::string_view text) const
{
    return "UPPER(" + std::string(column) + ")=UPPER(" + Text(text) + ")";
}

std::string SqlDialect::BeginsNoCase(std::string_view column, std::string_view text) const
{
    RequireFits(text, std::string_view::npos, "a filter");
    return "UPPER(" + std::string(column) + ") LIKE UPPER('" + LikeText(text) + "%') ESCAPE '\\'";
}

} // namespace vk
