#pragma once

#include <memory>
#include <string>
#include <type_traits>
#include <vector>

#include "VKMXPmConfirmMsg.h"
#include "VKMXPmEnvelope.h"
#include "VKMXPmFields.h"
#include "VKMXPmMessage.h"
#include "VKMXPmRejectMsg.h"
#include "VKMXPmSendMsgResponse.h"
#include "VKMXPmSetMsgStatus.h"

/// Fills and wraps packets of any kind by walking their tables.
namespace kit {

/// All eight characters that are escaped, blanks at both ends, and text of more than one byte a character.
inline const std::string kHostile = " &><'\"\t\n\r \xC3\xA9\xE2\x82\xAC\xF0\x9F\x9A\x92 ";

template <class Record, class Table> void Fill(Record& record, const Table& table, int& seed);

template <class Value> void FillValue(Value& value, int& seed)
{
    ++seed;
    if constexpr (std::is_same_v<Value, std::string>)
        value = kHostile + std::to_string(seed);
    else if constexpr (std::is_same_v<Value, bool>)
        value = true;
    else if constexpr (vk::detail::IsRecord<Value>::value)
        Fill(value, Value::Fields(), seed);
    else
        value = -1000 * seed;
}

template <class Item> void FillValue(std::vector<Item>& items, int& seed)
{
    items.resize(3);
    for (Item& item : items)
        FillValue(item, seed);
}

template <class Record, class Table> void Fill(Record& record, const Table& table, int& seed)
{
    vk::ForEachField(table, [&](const auto& row) {
        if constexpr (std::decay_t<decltype(row)>::template has<vk::Verbatim>)
            row.of(record) = std::string("<") + row.name + " a='1'>\n<b>&amp;</b ></" + row.name + ">";
        else
            FillValue(row.of(record), seed);
    });
}

/// A valid packet with a value of its own in every field.
template <class Packet> std::unique_ptr<Packet> Full()
{
    auto packet = std::make_unique<Packet>();
    int seed = 0;
    Fill(*packet, Packet::ParamFields(), seed);
    packet->m_iSequence = 7;
    packet->m_bValid = true;
    return packet;
}

inline std::string Envelope(const std::string& packets, const std::string& space = "vardock:mxp")
{
    return "<mxp xmlns='" + space + "' version='1.0' dispatch='0' expire='0'>\n" + packets + "</mxp>";
}

inline std::string Request(const std::string& name, const std::string& parameters)
{
    return "<" + name + " xmlns='vardock:mxp:request' type='request' seq='7'>\n<parameters>\n" + parameters +
           "</parameters>\n</" + name + ">\n";
}

} // namespace kit
