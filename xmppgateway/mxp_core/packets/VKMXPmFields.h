#pragma once

#include <cstddef>
#include <string>
#include <type_traits>
#include <vector>

#include "VKMXPmTablePacket.h"
#include "VKMXPmValue.h"
#include "XmlReaderWriter.h"

/// \file
/// The walks over a packet's field table: write, read, test, compare. For the sources of packets and for tests.

namespace vk {

namespace detail {

template <class T, class = void> struct IsRecord : std::false_type
{
};

template <class T> struct IsRecord<T, std::void_t<decltype(T::Fields())>> : std::true_type
{
};

/// Whether a row of an item's table stands between the item's tags as an element of its own.
template <class Row> constexpr bool kIsElement = !Row::template has<Attribute> && !Row::template has<Contents>;

inline void AppendTag(std::string& out, const char* begin, const char* name, const char* end)
{
    out.append(begin).append(name).append(end);
}

} // namespace detail

template <class Record, class Table> void AppendFields(std::string& out, const Record& record, const Table& table);

/// One item of a list: its attributes in its start tag, then its contents and its elements.
template <class Item> void AppendItem(std::string& out, const char* name, const Item& item)
{
    out.append("<").append(name);
    if constexpr (detail::IsRecord<Item>::value) {
        constexpr auto table = Item::Fields();
        ForEachField(table, [&](const auto& row) {
            if constexpr (std::decay_t<decltype(row)>::template has<Attribute>) {
                detail::AppendTag(out, " ", row.name, "='");
                AppendValue(out, row.of(item));
                out += '\'';
            }
        });
        out += '>';
        ForEachField(table, [&](const auto& row) {
            if constexpr (std::decay_t<decltype(row)>::template has<Contents>)
                AppendValue(out, row.of(item));
        });
        AppendFields(out, item, table);
    } else {
        out += '>';
        AppendValue(out, item);
    }
    detail::AppendTag(out, "</", name, ">\n");
}

/// Every row that is an element, in table order, each with its line feed.
template <class Record, class Table> void AppendFields(std::string& out, const Record& record, const Table& table)
{
    ForEachField(table, [&](const auto& row) {
        using Row = std::decay_t<decltype(row)>;
        const auto& value = row.of(record);
        if constexpr (Row::template has<Verbatim>) {
            out.append(value).append("\n");
        } else if constexpr (Row::template has<ItemsNamed>) {
            detail::AppendTag(out, "<", row.name, " count='");
            AppendValue(out, static_cast<std::int32_t>(value.size()));
            out += "'>\n";
            for (const auto& item : value)
                AppendItem(out, row.template mark<ItemsNamed>().name, item);
            detail::AppendTag(out, "</", row.name, ">\n");
        } else if constexpr (detail::kIsElement<Row>) {
            detail::AppendTag(out, "<", row.name, ">");
            AppendValue(out, value);
            detail::AppendTag(out, "</", row.name, ">\n");
        }
    });
}

template <class Record, class Table>
void ReadFields(XmlReaderWriter::Node& element, Record& record, const Table& table);

/// The value of one element: a list of items, a record or a single value.
template <class Value> void ReadElement(XmlReaderWriter::Node& element, Value& value)
{
    if constexpr (detail::IsRecord<Value>::value)
        ReadFields(element, value, Value::Fields());
    else
        ReadValue(element.contentsText(), value);
}

template <class Item> void ReadElement(XmlReaderWriter::Node& element, std::vector<Item>& items)
{
    items.clear();
    for (auto child = element.firstChild(); !child.isNull(); child = child.nextSibling())
        ReadElement(child, items.emplace_back());
}

/// Every row, in table order, from the children, the attributes and the contents of an element. Throws
/// XmlReaderWriter::NodeException for the first one that is missing and not optional.
template <class Record, class Table> void ReadFields(XmlReaderWriter::Node& element, Record& record, const Table& table)
{
    ForEachField(table, [&](const auto& row) {
        using Row = std::decay_t<decltype(row)>;
        auto& value = row.of(record);
        if constexpr (Row::template has<Contents>) {
            ReadValue(element.contentsText(), value);
        } else if constexpr (Row::template has<Attribute>) {
            if (!Row::template has<Optional> || element.isAttribute(row.name))
                ReadValue(element.attributeText(row.name), value);
        } else {
            auto child = Row::template has<Optional> ? element.findChild(row.name) : element[row.name];
            if (child.isNull())
                return;
            if constexpr (Row::template has<Verbatim>)
                value = child.sourceText();
            else if constexpr (Row::template has<SetByOne>)
                value = NumberOf(child.contentsText()) == 1;
            else
                ReadElement(child, value);
        }
    });
}

/// Whether no field that must hold something is empty.
template <class Record, class Table> bool FieldsFilled(const Record& record, const Table& table)
{
    return AllFields(table, [&](const auto& row) {
        if constexpr (std::decay_t<decltype(row)>::template has<NotEmpty>)
            return !row.of(record).empty();
        else
            return true;
    });
}

/// Whether two values are the same, records and lists field by field.
template <class Value> bool SameValue(const Value& left, const Value& right)
{
    if constexpr (detail::IsRecord<Value>::value)
        return AllFields(Value::Fields(), [&](const auto& row) { return SameValue(row.of(left), row.of(right)); });
    else
        return left == right;
}

template <class Item> bool SameValue(const std::vector<Item>& left, const std::vector<Item>& right)
{
    bool same = left.size() == right.size();
    for (std::size_t i = 0; same && i < left.size(); ++i)
        same = SameValue(left[i], right[i]);
    return same;
}

/// Whether two packets of one kind say the same in `parameters`.
template <class Packet> bool SameParameters(const Packet& left, const Packet& right)
{
    return AllFields(Packet::ParamFields(), [&](const auto& row) { return SameValue(row.of(left), row.of(right)); });
}

template <class Packet> const char* TablePacket<Packet>::GetName() const { return Packet::kElement; }

template <class Packet> std::string TablePacket<Packet>::GenerateParamXML() const
{
    std::string text;
    text.reserve(1024);
    AppendFields(text, static_cast<const Packet&>(*this), Packet::ParamFields());
    return text;
}

template <class Packet> bool TablePacket<Packet>::ParseParamXML(XmlReaderWriter::Node& parameters)
{
    ReadFields(parameters, static_cast<Packet&>(*this), Packet::ParamFields());
    return true;
}

template <class Packet> bool TablePacket<Packet>::ValidateParams() const
{
    return FieldsFilled(static_cast<const Packet&>(*this), Packet::ParamFields());
}

template <class Packet> std::string TablePacket<Packet>::GenerateResponseXML() const { return {}; }

template <class Packet> bool TablePacket<Packet>::ParseResponseXML(XmlReaderWriter::Node&) { return true; }

} // namespace vk
