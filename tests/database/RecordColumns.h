#pragma once

#include <algorithm>
#include <cstring>
#include <sstream>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

#include "VKTableRow.h"

/// \file
/// Records by the names of their columns, so that a case sets and shows what it is about and nothing else.

/// What a column is to hold.
struct ColumnValue
{
    template <class Value> ColumnValue(const char* columnName, const Value& value) : column(columnName)
    {
        if constexpr (std::is_arithmetic_v<Value> || std::is_enum_v<Value>)
            text = std::to_string(value);
        else
            text = value;
    }

    std::string column;
    std::string text;
};
using ColumnValues = std::vector<ColumnValue>;

namespace detail {

template <class Value> std::string ColumnText(const Value& value)
{
    if constexpr (std::is_same_v<Value, char*>)
        return value != nullptr ? value : "(null)";
    else if constexpr (std::is_array_v<Value> || std::is_same_v<Value, std::string>)
        return value;
    else
        return std::to_string(value);
}

/// Calls `use` with the field of a name; an error when there is none.
template <class Fields, class Use> void WithColumn(const Fields& fields, const std::string& name, Use&& use)
{
    bool found = false;
    vk::ForEachField(fields, [&](const auto& field) {
        if (name == field.name) {
            use(field);
            found = true;
        }
    });
    if (!found)
        throw std::logic_error("there is no column " + name);
}

} // namespace detail

template <class Fields, class Record>
void SetColumns(const Fields& fields, Record& record, const ColumnValues& values)
{
    for (const auto& [column, text] : values)
        detail::WithColumn(fields, column, [&, &value = text](const auto& field) {
            vk::ReadValue(field.of(record), VKDBiRowField(field.name, value.c_str()), field.name);
        });
}

/// Some columns: "Ann 3" for "name status_code".
template <class Fields, class Record>
std::string Columns(const Fields& fields, const Record& record, const std::string& names)
{
    std::string text;
    std::istringstream words(names);
    const char* space = "";
    for (std::string name; words >> name; space = " ")
        detail::WithColumn(
            fields, name, [&](const auto& field) { text += space + detail::ColumnText(field.of(record)); });
    return text;
}

/// All columns, one a line: "name=Ann".
template <class Fields, class Record> std::string AllColumns(const Fields& fields, const Record& record)
{
    std::string text;
    vk::ForEachField(
        fields, [&](const auto& field) { text += field.name + ("=" + detail::ColumnText(field.of(record))) + "\n"; });
    return text;
}

/// A text that would end, continue or change a statement, or match others, if it were not conditioned; of at most
/// `most` bytes. Four-byte UTF-8 is counted in bytes on a file and in characters on a server, so that it fits both.
inline std::string Hostile(std::size_t most, const std::string& mark = "")
{
    std::string text = "'\"\\%_;--\n" + mark;
    if (text.size() + 10 <= most)
        text += "\xF0\x9F\x9A\x91{}$1?";
    while (text.size() + 2 <= most)
        text += "''";
    return text.substr(0, most);
}

/// Gives every column a value that no other one has, every text a hostile one.
template <class Fields, class Record> void FillColumns(const Fields& fields, Record& record)
{
    int number = 0;
    vk::ForEachField(fields, [&](const auto& field) {
        using Value = typename std::decay_t<decltype(field)>::Value;
        Value& value = field.of(record);
        ++number;
        if constexpr (std::is_same_v<Value, bool>)
            value = number % 2 == 0;
        else if constexpr (std::is_same_v<Value, char*>)
            value = strdup(Hostile(500, field.name).c_str());
        else if constexpr (std::is_array_v<Value>)
            vk::SetText(value, Hostile(std::min<std::size_t>(sizeof value - 1, 30), field.name), field.name);
        else if constexpr (std::is_same_v<Value, std::string>)
            value = Hostile(20, field.name);
        else if constexpr (!std::is_enum_v<Value>)
            value = static_cast<Value>(number * 1000);
    });
}
