#pragma once

#include <string_view>
#include <type_traits>
#include <vector>

#include "VKMXPmWrite.h"
#include "XmlReaderWriter.h"

/// \file
/// The walk that reads a table.

namespace vk::mxp {

template <class Row, class Value> void ReadFieldValue(std::string_view text, const Row& row, Value& value)
{
    if constexpr (kIsOptional<Value>) {
        ReadFieldValue(text, row, value.emplace());
    } else if constexpr (Row::template has<SetByOne>) {
        value = NumberOf(text) == 1;
    } else if constexpr (Row::template has<SetByWord>) {
        const SetByWord& mark = row.template mark<SetByWord>();
        value = text == mark.word || (mark.other && text == mark.other);
    } else {
        ReadValue(text, value);
    }
}

/// Without the line feeds that put it on a line of its own.
inline std::string_view OffItsLine(std::string_view text)
{
    if (!text.empty() && text.front() == '\n')
        text.remove_prefix(1);
    if (!text.empty() && text.back() == '\n')
        text.remove_suffix(1);
    return text;
}

template <class Record, class Table>
void ReadFields(XmlReaderWriter::Node& element, Record& record, const Table& table);

/// Every child of an element, whatever its name, is one item.
template <class Item> void ReadItems(const XmlReaderWriter::Node& element, std::vector<Item>& items)
{
    items.clear();
    std::size_t count = 0;
    for (auto child = element.firstChild(); !child.isNull(); child = child.nextSibling())
        ++count;
    items.reserve(count); // a directory's items are large, and many
    for (auto child = element.firstChild(); !child.isNull(); child = child.nextSibling()) {
        Item& item = items.emplace_back();
        if constexpr (kIsRecord<Item>)
            ReadFields(child, item, TableOf<Item>::Fields());
        else
            ReadValue(child.contentsText(), item);
    }
}

/// The contents of the table's element. A value that may be left alone is there when there are any.
template <class Row, class Value> void ReadContents(const XmlReaderWriter::Node& element, const Row& row, Value& value)
{
    std::string_view text = element.contentsText();
    if constexpr (Row::template has<OnOwnLine>)
        text = OffItsLine(text);
    if (!kIsOptional<Value> || !text.empty())
        ReadFieldValue(text, row, value);
}

/// A field that is a child of the table's element.
template <class Row, class Value> void ReadChild(XmlReaderWriter::Node& child, const Row& row, Value& value)
{
    if constexpr (Row::template has<Verbatim>)
        value = child.sourceText();
    else if constexpr (Row::template has<ItemsNamed>)
        ReadItems(child, value);
    else if constexpr (kIsRecord<Value>)
        ReadFields(child, value, TableOf<Value>::Fields());
    else if constexpr (kValueInAttribute<Form::Read, Row>)
        ReadFieldValue(child.attributeText(ValueAttribute<Form::Read>(row)), row, value);
    else
        ReadFieldValue(child.contentsText(), row, value);
}

/// One row, from the children, the attributes or the contents of its table's element.
template <class Record, class Row> void ReadRow(XmlReaderWriter::Node& element, Record& record, const Row& row)
{
    if constexpr (kIsFixed<Row>) {
    } else if constexpr (Row::template has<CountOf>) {
    } else if constexpr (Row::template has<Contents>) {
        ReadContents(element, row, row.of(record));
    } else if constexpr (Row::template has<Attribute>) {
        if (!MayMiss<Record, Row>() || element.isAttribute(row.name))
            ReadFieldValue(element.attributeText(row.name), row, row.of(record));
    } else if constexpr (Row::template has<Items>) {
        ReadItems(element, row.of(record));
    } else {
        XmlReaderWriter::Node child = MayMiss<Record, Row>() ? element.findChild(row.name) : element[row.name];
        if (child.isNull())
            return;
        if constexpr (kIsGroup<Row>)
            ReadFields(child, record, row.rows);
        else
            ReadChild(child, row, row.of(record));
    }
}

/// Every row, in table order. Throws XmlReaderWriter::NodeException for the first one that is missing and must not be.
template <class Record, class Table> void ReadFields(XmlReaderWriter::Node& element, Record& record, const Table& table)
{
    ForEachField(table, [&](const auto& row) { ReadRow(element, record, row); });
}

} // namespace vk::mxp
