#pragma once

#include "AdminOutput.h"
#include "RecordForm.h"
#include "VKMXPmRows.h"

#include <string>
#include <type_traits>
#include <vector>

/// \file
/// The fields of a packet under the keys by which an administrator names them: the elements and the attribute that lead
/// to a value, joined by points, with the number of a list's item. Walks over the packet's tables.

namespace vk {

/// One key, taken apart, and how far a walk has come in it.
struct FieldKey
{
    std::string whole;
    std::vector<std::string> words;
    std::size_t at = 0;

    bool Left() const { return at < words.size(); }
    bool Is(const char* word) const { return Left() && words[at] == word; }
    FieldKey Behind(std::size_t count = 1) const { return {whole, words, at + count}; }

    /// The number of an item; 0 when there is none.
    std::size_t Index() const
    {
        std::size_t number = 0;
        if (Left())
            std::from_chars(words[at].data(), words[at].data() + words[at].size(), number);
        return number;
    }
};

template <class Record, class Table>
void ShowFields(const Record& record, const Table& table, const std::string& prefix, ShownRecord& shown);

template <class Item> void ShowItems(const std::vector<Item>& items, const std::string& key, ShownRecord& shown)
{
    for (std::size_t i = 0; i < items.size(); ++i) {
        const std::string numbered = key + "." + std::to_string(i + 1);
        if constexpr (mxp::kIsRecord<Item>)
            ShowFields(items[i], mxp::TableOf<Item>::Fields(), numbered + ".", shown);
        else
            shown.emplace_back(numbered, ValueToJson(items[i], {}));
    }
}

template <class Row, class Value>
void ShowField(const Row& row, const Value& value, const std::string& prefix, ShownRecord& shown)
{
    const std::string key = prefix + (Row::template has<mxp::Contents> ? "text" : row.name);
    if constexpr (mxp::kIsOptional<Value>) {
        if (value)
            ShowField(row, *value, prefix, shown);
    } else if constexpr (Row::template has<mxp::ItemsNamed>) {
        ShowItems(value, key + "." + row.template mark<mxp::ItemsNamed>().name, shown);
    } else if constexpr (Row::template has<mxp::Items>) {
        ShowItems(value, key, shown);
    } else if constexpr (mxp::kIsRecord<Value>) {
        ShowFields(value, mxp::TableOf<Value>::Fields(), key + ".", shown);
    } else {
        shown.emplace_back(key, ValueToJson(value, {}));
    }
}

/// Every field that is there, in the order of the wire.
template <class Record, class Table>
void ShowFields(const Record& record, const Table& table, const std::string& prefix, ShownRecord& shown)
{
    ForEachField(table, [&](const auto& row) {
        using Row = std::decay_t<decltype(row)>;
        if constexpr (mxp::kIsFixed<Row> || Row::template has<mxp::CountOf>)
            return;
        else if constexpr (mxp::kIsConditional<Record, Row>)
            if (record.*row.template mark<mxp::Unless<Record>>().flag)
                return;
        if constexpr (mxp::kIsGroup<Row>)
            ShowFields(record, row.rows, prefix + row.name + ".", shown);
        else if constexpr (!mxp::kIsFixed<Row> && !Row::template has<mxp::CountOf>)
            ShowField(row, row.of(record), prefix, shown);
    });
}

template <class Record, class Table>
bool SetField(Record& record, const Table& table, const FieldKey& key, const std::string& value);

/// A further item, or the one of a number.
template <class Item> bool SetItem(std::vector<Item>& items, const FieldKey& key, const std::string& value)
{
    std::size_t index = key.Index();
    if (!key.Left() && !mxp::kIsRecord<Item>)
        index = items.size() + 1;
    if (index == 0)
        return false;
    if (index > items.size() + 1)
        throw UsageError(key.whole + ": there is no item " + std::to_string(items.size() + 1) + " before it");
    if (index > items.size())
        items.emplace_back();
    if constexpr (mxp::kIsRecord<Item>) {
        return SetField(items[index - 1], mxp::TableOf<Item>::Fields(), key.Behind(), value);
    } else {
        SetFromText(items[index - 1], value, key.whole);
        return !key.Behind().Left();
    }
}

template <class Row, class Value>
bool SetRow(const Row& row, Value& member, const FieldKey& key, const std::string& value)
{
    if (!key.Is(Row::template has<mxp::Contents> ? "text" : row.name))
        return false;
    const FieldKey rest = key.Behind();
    if constexpr (Row::template has<mxp::ItemsNamed>) {
        return rest.Is(row.template mark<mxp::ItemsNamed>().name) && SetItem(member, rest.Behind(), value);
    } else if constexpr (Row::template has<mxp::Items>) {
        return SetItem(member, rest, value);
    } else if constexpr (mxp::kIsRecord<Value>) {
        return SetField(member, mxp::TableOf<Value>::Fields(), rest, value);
    } else {
        if (rest.Left())
            return false;
        if constexpr (mxp::kIsOptional<Value>)
            SetFromText(member.emplace(), value, key.whole);
        else
            SetFromText(member, value, key.whole);
        return true;
    }
}

/// Puts a text into the field of that key. False when there is none; throws UsageError for a value that does not fit.
template <class Record, class Table>
bool SetField(Record& record, const Table& table, const FieldKey& key, const std::string& value)
{
    bool set = false;
    ForEachField(table, [&](const auto& row) {
        using Row = std::decay_t<decltype(row)>;
        if constexpr (mxp::kIsGroup<Row>)
            set = set || (key.Is(row.name) && SetField(record, row.rows, key.Behind(), value));
        else if constexpr (!mxp::kIsFixed<Row> && !Row::template has<mxp::CountOf>)
            set = set || SetRow(row, row.of(record), key, value);
    });
    return set;
}

} // namespace vk
