#include "VKSqlDialect.h"

#include <algorithm>

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

std::string WithAnyText(std::string pattern)
{
    std::replace(pattern.begin(), pattern.end(), '*', '%');
    return pattern;
}

} // namespace

void SqlDialect::RequireStorable(std::string_view text, const char* field) const
{
    RequireFits(text, std::string_view::npos, field);
}

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
    RequireStorable(text, std::string(column).c_str());
    return "UPPER(" + std::string(column) + ") LIKE UPPER('" + LikeText(text) + "%') ESCAPE '\\'";
}

std::string SqlDialect::Matches(std::string_view column, std::string_view pattern) const
{
    RequireStorable(pattern, std::string(column).c_str());
    return std::string(column) + " LIKE '" + WithAnyText(LikeText(pattern)) + "' ESCAPE '\\'";
}

std::string SqlDialect::MatchesNoCase(std::string_view column, std::string_view pattern) const
{
    RequireStorable(pattern, std::string(column).c_str());
    return "UPPER(" + std::string(column) + ") LIKE UPPER('" + WithAnyText(LikeText(pattern)) + "') ESCAPE '\\'";
}

std::string SqlDialect::WithFirstLetter(std::string_view column, char letter) const
{
    return Text({&letter, 1}) + "||substr(" + std::string(column) + ", 2)";
}

std::string SqlDialect::PageOfTable(const std::string& columns, const std::string& from, const std::string& order,
                                    long size, long offset) const
{
    return "SELECT " + columns + " FROM " + from + " ORDER BY " + order + " LIMIT " + std::to_string(size) +
           " OFFSET " + std::to_string(offset);
}

std::string SqlDialect::NullForZeroColumn(std::string_view name, std::string_view of) const
{
    return std::string(name) + " AS NULLIF(" + std::string(of) + ", 0) PERSISTED";
}

} // namespace vk
