#pragma once

#include "Options.h"
#include "VKTableField.h"

#include <json/json.h>

#include <charconv>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string>
#include <string_view>
#include <type_traits>

/// \file
/// A record as an administrator sees it: each column of its table is an option of "add" and a key of the output, both
/// under the column's name ("department_id", "--department-id"). Everything here is a walk over the record's field table.

namespace vk {

/// Words that stand for the numbers of a column.
struct ColumnWords
{
    const char* column;
    Slice<CodeText<int>> words;
};

inline std::string OptionOfColumn(const char* column)
{
    std::string option = std::string("--") + column;
    for (char& c : option)
        if (c == '_')
            c = '-';
    return option;
}

inline Slice<CodeText<int>> WordsOfColumn(Slice<ColumnWords> all, const char* column)
{
    for (const ColumnWords& entry : all)
        if (std::strcmp(entry.column, column) == 0)
            return entry.words;
    return {};
}

/// Puts a text from the command line into a member. Throws UsageError that names the option.
template <class Value>
void SetFromText(Value& member, const std::string& text, const std::string& option)
{
    if constexpr (std::is_array_v<Value>) {
        if (text.size() >= sizeof member)
            throw UsageError(option + ": is longer than " + std::to_string(sizeof member - 1) + " bytes");
        std::memcpy(member, text.c_str(), text.size() + 1);
    } else if constexpr (std::is_same_v<Value, bool>) {
        if (text != "true" && text != "false")
            throw UsageError(option + ": '" + text + "' is neither true nor false");
        member = text == "true";
    } else if constexpr (std::is_integral_v<Value>) {
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), member);
        if (error != std::errc() || end != text.data() + text.size())
            throw UsageError(option + ": '" + text + "' is no whole number" + (std::is_unsigned_v<Value> ? " from 0" : ""));
    } else if constexpr (std::is_floating_point_v<Value>) {
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), member);
        if (error != std::errc() || end != text.data() + text.size() || !std::isfinite(member))
            throw UsageError(option + ": '" + text + "' is no number");
    } else if constexpr (std::is_same_v<Value, std::string>) {
        member = text;
    } else if constexpr (std::is_same_v<Value, char*>) { // the record's own
        char* const copy = strdup(text.c_str());
        if (copy == nullptr)
            throw std::bad_alloc();
        std::free(member);
        member = copy;
    } else if constexpr (std::is_enum_v<Value>) {
        std::underlying_type_t<Value> number{};
        SetFromText(number, text, option);
        member = static_cast<Value>(number);
    } else {
        throw UsageError(option + " cannot be set");
    }
}

/// The text of a column's value, with the number of the word that it may be.
inline std::string WithoutWord(std::string text, Slice<CodeText<int>> words)
{
    for (const auto& word : words)
        if (text == word.text)
            return std::to_string(word.code);
    return text;
}

inline bool Contains(Slice<const char*> names, const char* name)
{
    for (const char* one : names)
        if (std::strcmp(one, name) == 0)
            return true;
    return false;
}

/// Fills a record from the options that were given, but for those of some columns.
template <class Fields, class Record>
void FillFromOptions(const Fields& fields, Slice<ColumnWords> words, const Arguments& arguments, Record& record,
                     Slice<const char*> but = {})
{
    ForEachField(fields, [&](const auto& row) {
        const std::string option = OptionOfColumn(row.name);
        if (arguments.Has(option) && !Contains(but, row.name))
            SetFromText(row.of(record), WithoutWord(arguments.Text(option), WordsOfColumn(words, row.name)), option);
    });
}

/// Throws UsageError for the first std::string that is longer than its column.
template <class Fields, class Record>
void RequireLengths(const Fields& fields, const Record& record)
{
    ForEachField(fields, [&](const auto& row) {
        if constexpr (std::decay_t<decltype(row)>::template has<Varchar>) {
            const int width = row.template mark<Varchar>().width;
            if (row.of(record).size() > static_cast<std::size_t>(width))
                throw UsageError(OptionOfColumn(row.name) + ": is longer than " + std::to_string(width) + " bytes");
        }
    });
}

template <class Value>
Json::Value ValueToJson(const Value& member, Slice<CodeText<int>> words)
{
    if constexpr (std::is_floating_point_v<Value>) {
        return Json::Value(member);
    } else if constexpr (std::is_array_v<Value>) {
        return Json::Value(std::string(member, strnlen(member, sizeof member)));
    } else if constexpr (std::is_pointer_v<Value>) {
        return Json::Value(member == nullptr ? "" : member);
    } else if constexpr (std::is_same_v<Value, bool> || std::is_same_v<Value, std::string>) {
        return Json::Value(member);
    } else {
        for (const auto& word : words)
            if (static_cast<long long>(member) == word.code)
                return Json::Value(word.text);
        if constexpr (std::is_unsigned_v<Value>)
            return Json::Value(static_cast<Json::UInt64>(member));
        else
            return Json::Value(static_cast<Json::Int64>(member));
    }
}

/// The record as the keys and values that are shown, in table order. Secrets and what is hidden are left out.
template <class Fields, class Record>
std::vector<std::pair<std::string, Json::Value>> ShownValues(const Fields& fields, Slice<ColumnWords> words,
                                                             Slice<const char*> hidden, const Record& record)
{
    std::vector<std::pair<std::string, Json::Value>> values;
    ForEachField(fields, [&](const auto& row) {
        if (std::decay_t<decltype(row)>::template has<Secret>)
            return;
        if (Contains(hidden, row.name))
            return;
        values.emplace_back(row.name, ValueToJson(row.of(record), WordsOfColumn(words, row.name)));
    });
    return values;
}

} // namespace vk
