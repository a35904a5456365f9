#pragma once

#include <cstddef>
#include <string>
#include <type_traits>
#include <vector>

#include "VKMXPmRead.h"
#include "VKMXPmTablePacket.h"
#include "VKMXPmWrite.h"

/// \file
/// What a packet does with its tables. For the sources of packets, for tools and for tests.

namespace vk::mxp {

/// Whether no field that must hold something is empty.
template <class Record, class Table> bool FieldsFilled(const Record& record, const Table& table)
{
    bool filled = true;
    ForEachFlatField(table, [&](const auto& row) {
        using Row = std::decay_t<decltype(row)>;
        if constexpr (Row::template has<NotEmpty> && kIsOptional<typename Row::Value>)
            filled = filled && !(row.of(record) && row.of(record)->empty());
        else if constexpr (Row::template has<NotEmpty>)
            filled = filled && !row.of(record).empty();
    });
    return filled;
}

template <class Value> bool SameValue(const Value& left, const Value& right);
template <class Item> bool SameValue(const std::vector<Item>& left, const std::vector<Item>& right);

/// Whether two records are the same in all fields of a table.
template <class Record, class Table> bool SameFields(const Record& left, const Record& right, const Table& table)
{
    bool same = true;
    ForEachFlatField(table, [&](const auto& row) { same = same && SameValue(row.of(left), row.of(right)); });
    return same;
}

template <class Item> bool SameValue(const std::vector<Item>& left, const std::vector<Item>& right)
{
    bool same = left.size() == right.size();
    for (std::size_t i = 0; same && i < left.size(); ++i)
        same = SameValue(left[i], right[i]);
    return same;
}

/// Whether two values are the same, records and lists field by field.
template <class Value> bool SameValue(const Value& left, const Value& right)
{
    if constexpr (kIsRecord<Value>)
        return SameFields(left, right, TableOf<Value>::Fields());
    else
        return left == right;
}

/// Whether two packets of one kind say the same in `parameters`.
template <class Packet> bool SameParameters(const Packet& left, const Packet& right)
{
    return SameFields(left, right, Packet::ParamFields());
}

/// The inside of `parameters` in the form that the packet's reader takes: what a client has to send.
template <class Packet> std::string ParamsForReader(const Packet& packet)
{
    std::string text;
    AppendFields<Form::Read>(text, packet, Packet::ParamFields());
    return text;
}

/// The inside of `parameters` as the side that sends requests of this kind writes it.
template <class Packet> std::string ParamsOnWire(const Packet& packet)
{
    return Packet::kServerSends ? packet.GenerateParamXML() : ParamsForReader(packet);
}

template <class Packet> const char* TablePacket<Packet>::GetName() const { return Packet::kElement; }

template <class Packet> std::string TablePacket<Packet>::GenerateParamXML() const
{
    std::string text;
    if constexpr (Packet::kWritesParams) {
        text.reserve(1024);
        AppendFields<Form::Written>(text, static_cast<const Packet&>(*this), Packet::ParamFields());
    }
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

template <class Packet> std::string TablePacket<Packet>::GenerateResponseXML() const
{
    std::string text;
    AppendFields<Form::Written>(text, static_cast<const Packet&>(*this), Packet::ResultFields());
    return text;
}

template <class Packet> bool TablePacket<Packet>::ParseResponseXML(XmlReaderWriter::Node& result)
{
    if constexpr (Packet::kReadsResult && FieldCount(Packet::ResultFields()) > 0) {
        if (result.isNull())
            return false;
        ReadFields(result, static_cast<Packet&>(*this), Packet::ResultFields());
    }
    return true;
}

} // namespace vk::mxp
