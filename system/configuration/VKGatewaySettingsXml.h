#pragma once

#include "VKS2SProfile.h"
#include "VKstringTrim.h"
#include "XmlReaderWriter.h"

#include <charconv>
#include <cstring>
#include <string>
#include <vector>

/// \file
/// The walk over the tables of the gateway's settings files (VKGatewaySettingsMarks.h), both ways. What is required and
/// missing, or no number where one belongs, throws XmlReaderWriter::NodeException. Writing changes a document in place,
/// which must be mutable: whatever it holds besides stays.

namespace vk::settings {

template <class Row, class Mark> constexpr bool kRowHas = std::decay_t<Row>::template has<Mark>;

class GatewaySettingsReader
{
public:
    template <class Table, class Record>
    static void Read(const Table& table, Record& record, const XmlReaderWriter::Node& root)
    {
        ForEachField(table, [&](const auto& row) {
            const XmlReaderWriter::Node element = ElementOf(row, root);
            if (!element.isNull())
                ReadRow(row, row.of(record), element);
        });
    }

private:
    using Node = XmlReaderWriter::Node;
    using Missing = XmlReaderWriter::NodeException;

    /// A null node for an element that may be missing and is.
    template <class Row> static Node ElementOf(const Row& row, const Node& root)
    {
        Node parent = root;
        if constexpr (kRowHas<Row, In>) {
            parent = root.findChild(row.template mark<In>().group);
            if (parent.isNull() && (kRowHas<Row, OptionalGroup> || kRowHas<Row, Extension>))
                return parent;
            if (parent.isNull())
                throw Missing("The element '%s' is missing.", row.template mark<In>().group);
        }
        const Node element = *row.name ? parent.findChild(row.name) : parent;
        if (element.isNull() && !kRowHas<Row, Optional> && !kRowHas<Row, Extension>)
            throw Missing("The element '%s' is missing.", row.name);
        return element;
    }

    template <class Row, class Value> static void ReadRow(const Row& row, Value& value, const Node& element)
    {
        if constexpr (kRowHas<Row, InAttribute>)
            value = element.attributeValue(row.template mark<InAttribute>().attribute); // throws when missing
        else if constexpr (kRowHas<Row, AuthMechanism>)
            Convert(Attribute(element, "value"), value, row.name); // the word is for people
        else if constexpr (kRowHas<Row, Items>)
            ReadItems(row.template mark<Items>().name, value, element);
        else
            Convert(element.contentsText(), value, row.name);
    }

    static std::string_view Attribute(const Node& element, const char* name)
    {
        return element.attributeText(name); // throws when missing
    }

    static void Convert(std::string_view text, std::string& value, const char*) { value = text; }
    static void Convert(std::string_view text, bool& value, const char*) { value = Trimmed(text) == "true"; }
    template <class Number> static void Convert(std::string_view text, Number& value, const char* name)
    {
        const std::string_view digits = Trimmed(text);
        Number number = 0;
        const auto read = std::from_chars(digits.data(), digits.data() + digits.size(), number);
        // An empty element is 0.
        if (!digits.empty() && (read.ec != std::errc() || read.ptr != digits.data() + digits.size()))
            throw Missing("The value '%s' of '%s' is no number.", std::string(digits).c_str(), name);
        value = number;
    }

    static void ReadItem(std::string& item, const Node& element) { item = element.contentsText(); }
    static void ReadItem(VKS2SProfile& item, const Node& element) { Read(kS2SProfileFields, item, element); }

    template <class Item> static void ReadItems(const char* name, std::vector<Item>& items, const Node& element)
    {
        long count = 0;
        Convert(Attribute(element, "count"), count, name);
        items.clear();
        for (Node child = element.firstChild(); !child.isNull() && static_cast<long>(items.size()) < count;
             child = child.nextSibling())
            if (child.nameText() == name)
                ReadItem(items.emplace_back(), child);
    }
};

class GatewaySettingsWriter
{
public:
    /// `fresh` holds the defaults.
    template <class Table, class Record>
    static void Write(const Table& table, const Record& record, XmlReaderWriter::Node root, const Record& fresh = {})
    {
        ForEachField(table, [&](const auto& row) {
            if constexpr (kRowHas<decltype(row), Extension>)
                if (row.of(record) == row.of(fresh) && !IsThere(row, root))
                    return;
            WriteRow(row, row.of(record), ElementOf(row, root));
        });
    }

private:
    using Node = XmlReaderWriter::Node;

    template <class Row> static bool IsThere(const Row& row, const Node& root)
    {
        const Node parent = root.findChild(row.template mark<In>().group);
        return !parent.isNull() && parent.isChild(row.name);
    }

    template <class Row> static Node ElementOf(const Row& row, Node root)
    {
        Node parent = root;
        if constexpr (kRowHas<Row, In>)
            parent = root[row.template mark<In>().group];
        return *row.name ? parent[row.name] : parent; // a look-up adds what is missing
    }

    template <class Row, class Value> static void WriteRow(const Row& row, const Value& value, Node element)
    {
        if constexpr (kRowHas<Row, InAttribute>)
            SetAttribute(element, row.template mark<InAttribute>().attribute, Text(value));
        else if constexpr (kRowHas<Row, AuthMechanism>) {
            SetAttribute(element, "value", Text(value));
            SetContents(element, value == 1 ? "SASL-External" : "Dial Back");
        } else if constexpr (kRowHas<Row, Items>)
            WriteItems(row.template mark<Items>().name, value, element);
        else
            SetContents(element, Text(value));
    }

    static std::string Text(const std::string& value) { return value; }
    static std::string Text(bool value) { return value ? "true" : "false"; }
    template <class Number> static std::string Text(Number value) { return std::to_string(value); }

    static void SetContents(const Node& element, const std::string& text)
    {
        XmlReaderWriter::NodeString contents = element.value();
        contents = text;
    }
    static void SetAttribute(const Node& element, const char* name, const std::string& text)
    {
        XmlReaderWriter::NodeString attribute = element.attributeValue(name);
        attribute = text;
    }

    static void WriteItem(const std::string& item, const Node& element) { SetContents(element, item); }
    static void WriteItem(const VKS2SProfile& item, const Node& element) { Write(kS2SProfileFields, item, element); }

    /// Over the children that are there, one by one; what is left of them goes.
    template <class Item> static void WriteItems(const char* name, const std::vector<Item>& items, Node element)
    {
        SetAttribute(element, "count", std::to_string(items.size()));
        int index = 0;
        for (const Item& item : items) {
            const bool there = index < element.getSameChildrenCount(name);
            WriteItem(item, there ? element.getChildNode(name, index) : element.addChild(name));
            ++index;
        }
        int surplus = element.getSameChildrenCount(name) - index;
        for (int at = element.getChildrenCount() - 1; at >= 0 && surplus > 0; --at)
            if (element.getChildNode(at) == name && element.delChild(at))
                --surplus;
    }
};

} // namespace vk::settings
