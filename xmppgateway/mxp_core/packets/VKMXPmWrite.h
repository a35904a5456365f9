#pragma once

#include <cstddef>
#include <string>
#include <type_traits>
#include <vector>

#include "VKMXPmRows.h"
#include "VKMXPmValue.h"

/// \file
/// The walk that writes a table.

namespace vk::mxp {

/// A few fields are written in one form and read in another. `Written` is what a packet's own writer writes, `Read`
/// what its reader takes, which is what the other side of the protocol has to write.
enum class Form { Written, Read };

/// Whether a row's value stands in an attribute of its element, and in which.
template <Form form, class Row>
inline constexpr bool kValueInAttribute =
    Row::template has<InAttribute> ||
    Row::template has<std::conditional_t<form == Form::Written, WrittenInAttribute, ReadInAttribute>>;
template <Form form, class Row> constexpr const char* ValueAttribute(const Row& row)
{
    if constexpr (Row::template has<InAttribute>)
        return row.template mark<InAttribute>().name;
    else if constexpr (form == Form::Written)
        return row.template mark<WrittenInAttribute>().name;
    else
        return row.template mark<ReadInAttribute>().name;
}

template <Form form, class Row, class Value> void AppendFieldValue(std::string& out, const Row& row, const Value& value)
{
    if constexpr (kIsOptional<Value>)
        AppendFieldValue<form>(out, row, *value);
    else if constexpr (Row::template has<InWords>)
        out += value ? "true" : "false";
    else if constexpr (Row::template has<SetByWord> && form == Form::Read)
        out += value ? row.template mark<SetByWord>().word : "false";
    else
        AppendValue(out, value);
}

inline void AppendTag(std::string& out, const char* begin, const char* name, const char* end)
{
    out.append(begin).append(name).append(end);
}

template <Form form, class Row, class Value>
void AppendAttribute(std::string& out, const char* name, const Row& row, const Value& value)
{
    constexpr char quote = Row::template has<DoubleQuoted> ? '"' : '\'';
    (out.append(" ").append(name) += '=') += quote;
    AppendFieldValue<form>(out, row, value);
    out += quote;
}

/// The attribute of a row that is one and is there.
template <Form form, class Record, class Row>
void AppendRowAttribute(std::string& out, const Record& record, const Row& row)
{
    if constexpr (kIsFixed<Row>) {
        out.append(" ").append(row.name).append("='").append(row.text) += '\'';
    } else if constexpr (Row::template has<CountOf>) {
        AppendTag(out, " ", row.name, "='");
        AppendValue(out, row.of(record).size());
        out += '\'';
    } else if constexpr (Row::template has<Attribute>) {
        if constexpr (Row::template has<NeverWritten> && form == Form::Written)
            return;
        else if constexpr (kIsOptional<typename Row::Value>)
            if (!row.of(record))
                return;
        AppendAttribute<form>(out, row.name, row, row.of(record));
    }
}

template <class Row> void AppendEnd(std::string& out, const char* end)
{
    if constexpr (Row::template has<BlankBeforeEnd>)
        out += ' ';
    out += end;
    if constexpr (!Row::template has<NoLineFeed>)
        out += '\n';
}

template <Form form, class Record, class Table>
void AppendFields(std::string& out, const Record& record, const Table& table);

/// One element whose inside is a table: attributes, then contents or children. `Row` tells how the element looks.
template <Form form, class Row, class Record, class Table>
void AppendElement(std::string& out, const char* name, const Record& record, const Table& table)
{
    const std::size_t begin = out.size();
    out.append("<").append(name);
    const std::size_t attributes = out.size();
    ForEachField(table, [&](const auto& row) { AppendRowAttribute<form>(out, record, row); });
    bool empty = out.size() == attributes;
    if constexpr (!AnyRow<IsInside, Table>::value) {
        AppendEnd<Row>(out, "/>");
    } else {
        const std::size_t tagEnd = out.size();
        out += AnyRow<IsContents, Table>::value ? ">" : ">\n";
        const std::size_t inside = out.size();
        AppendFields<form>(out, record, table);
        empty = empty && out.size() == inside;
        if (Row::template has<ClosedWhenEmpty> && out.size() == inside) {
            out.resize(tagEnd);
            out += "/>\n";
            return;
        }
        out.append("</").append(name);
        AppendEnd<Row>(out, ">");
    }
    if (Row::template has<OmitUnset> && empty)
        out.resize(begin);
}

/// One item of a list.
template <Form form, class Item> void AppendItem(std::string& out, const char* name, const Item& item)
{
    if constexpr (kIsRecord<Item>) {
        AppendElement<form, FixedRow>(out, name, item, TableOf<Item>::Fields());
    } else {
        AppendTag(out, "<", name, ">");
        AppendValue(out, item);
        AppendTag(out, "</", name, ">\n");
    }
}

/// A field that stands between the tags of its table's element.
template <Form form, class Row, class Value> void AppendField(std::string& out, const Row& row, const Value& value)
{
    if constexpr (Row::template has<Contents>) {
        AppendFieldValue<form>(out, row, value);
    } else if constexpr (Row::template has<Verbatim>) {
        out.append(value).append("\n");
    } else if constexpr (Row::template has<Items>) {
        for (const auto& item : value)
            AppendItem<form>(out, row.name, item);
    } else if constexpr (Row::template has<ItemsNamed>) {
        AppendTag(out, "<", row.name, " count='");
        AppendValue(out, value.size());
        out += "'>\n";
        for (const auto& item : value)
            AppendItem<form>(out, row.template mark<ItemsNamed>().name, item);
        AppendTag(out, "</", row.name, ">\n");
    } else if constexpr (kIsRecord<Value>) {
        AppendElement<form, Row>(out, row.name, value, TableOf<Value>::Fields());
    } else if constexpr (kValueInAttribute<form, Row>) {
        out.append("<").append(row.name);
        AppendAttribute<form>(out, ValueAttribute<form>(row), row, value);
        AppendEnd<Row>(out, "/>");
    } else {
        AppendTag(out, "<", row.name, ">");
        AppendFieldValue<form>(out, row, value);
        out.append("</").append(row.name);
        AppendEnd<Row>(out, ">");
    }
}

/// A row that stands between the tags, if it is written at all.
template <Form form, class Record, class Row> void AppendRow(std::string& out, const Record& record, const Row& row)
{
    if constexpr (!kInStartTag<Row>) {
        if constexpr (kIsConditional<Record, Row>)
            if (record.*row.template mark<Unless<Record>>().flag)
                return;
        if constexpr (kIsGroup<Row>) {
            AppendElement<form, Row>(out, row.name, record, row.rows);
        } else {
            const auto& value = row.of(record);
            if constexpr (kIsOptional<typename Row::Value>)
                if (!value)
                    return;
            if constexpr (Row::template has<OmitEmpty>)
                if (value.empty())
                    return;
            AppendField<form>(out, row, value);
        }
    }
}

/// Every row that stands between the tags, in table order, each with its line feed.
template <Form form, class Record, class Table>
void AppendFields(std::string& out, const Record& record, const Table& table)
{
    ForEachField(table, [&](const auto& row) { AppendRow<form>(out, record, row); });
}

} // namespace vk::mxp
