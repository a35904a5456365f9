#pragma once

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "VKMXPmEnvelope.h"
#include "VKMXPmFields.h"
#include "VKMXPmPackets.h"

/// Fills and wraps packets of any kind by walking their tables.
namespace kit {

/// All eight characters that are escaped, blanks at both ends, and text of more than one byte a character.
inline const std::string kHostile = " &><'\"\t\n\r \xC3\xA9\xE2\x82\xAC\xF0\x9F\x9A\x92 ";

template <class Record, class Table> void Fill(Record& record, const Table& table, int& seed);

template <class Value> void FillValue(Value& value, int& seed)
{
    ++seed;
    if constexpr (std::is_same_v<Value, std::string>) {
        value = kHostile + std::to_string(seed);
    } else if constexpr (std::is_same_v<Value, bool>) {
        value = true;
    } else if constexpr (vk::mxp::kIsOptional<Value>) {
        FillValue(value.emplace(), seed);
    } else if constexpr (vk::mxp::kIsRecord<Value>) {
        Fill(value, vk::mxp::TableOf<Value>::Fields(), seed);
    } else if constexpr (std::is_same_v<Value, double>) {
        value = -0.125 * seed;
    } else {
        value = static_cast<Value>(std::is_signed_v<Value> ? -1000 * seed : 1000 * seed);
    }
}

template <class Item> void FillValue(std::vector<Item>& items, int& seed)
{
    items.resize(3);
    for (Item& item : items)
        FillValue(item, seed);
}

template <class Record, class Table> void Fill(Record& record, const Table& table, int& seed)
{
    vk::mxp::ForEachFlatField(table, [&](const auto& row) {
        using Row = std::decay_t<decltype(row)>;
        if constexpr (Row::template has<vk::mxp::Verbatim>)
            row.of(record) = std::string("<") + row.name + " a='1'>\n<b>&amp;</b ></" + row.name + ">";
        else
            FillValue(row.of(record), seed);
    });
}

/// A valid packet with a value of its own in every field that a request or a response carries.
template <class Packet> std::unique_ptr<Packet> Full()
{
    auto packet = std::make_unique<Packet>();
    int seed = 0;
    Fill(*packet, Packet::ParamFields(), seed);
    Fill(*packet, Packet::ResultFields(), seed);
    packet->m_iSequence = 7;
    packet->m_eResponseResultType = eRespResultXml;
    packet->m_bValid = true;
    return packet;
}

template <class Kinds> struct TypesOf;
template <class... Packets> struct TypesOf<const std::tuple<vk::mxp::Kind<Packets>...>>
{
    using Type = testing::Types<Packets...>;
};
using AllKinds = TypesOf<decltype(vk::mxp::kPackets)>::Type;

inline std::string Envelope(const std::string& packets, const std::string& space = "vardock:mxp")
{
    return "<mxp xmlns='" + space + "' version='1.0' dispatch='0' expire='0'>\n" + packets + "</mxp>";
}

inline std::string Request(const std::string& name, const std::string& parameters)
{
    return "<" + name + " xmlns='vardock:mxp:request' type='request' seq='7'>\n<parameters>\n" + parameters +
           "</parameters>\n</" + name + ">\n";
}

inline std::string Response(const std::string& name, const std::string& parameters, const std::string& result)
{
    return "<" + name + " xmlns='vardock:mxp:response' type='response' seq='7'>\n<parameters>\n" + parameters +
           "</parameters>\n<response><code>1</code><err-code>0</err-code><message/>" + result + "</response></" + name +
           ">\n";
}

/// The packet as the other side has to send it.
template <class Packet> std::string Sent(const Packet& packet)
{
    std::string text;
    packet.AppendXML(text, vk::mxp::ParamsForReader(packet));
    return text;
}

/// The one packet of an envelope; null with the envelope's error when it is refused.
template <class Packet> std::unique_ptr<Packet> Only(const std::string& text, std::string* error = nullptr)
{
    VKMXPmEnvelope envelope;
    envelope.ParseXML(text);
    if (error)
        *error = envelope.m_iErrorCode ? std::to_string(envelope.m_iErrorCode) + " " + envelope.m_strErrorText : "";
    return std::unique_ptr<Packet>(dynamic_cast<Packet*>(envelope.Detach(0)));
}

/// The packet that an envelope with this text in it brings.
template <class Packet> std::unique_ptr<Packet> Received(const std::string& text, std::string* error = nullptr)
{
    return Only<Packet>(Envelope(text), error);
}

inline std::string ReadFile(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// One of the texts of a kind: its "request", its "response", or the request as it is "written".
inline std::string Golden(const std::string& name, const char* which)
{
    return ReadFile(VK_SOURCE_DIR "/tests/packets/golden/" + name + "." + which + ".xml");
}

/// Makes a request the response to itself, as a server does that found what stands in another response.
template <class Packet> void Answer(Packet& packet, const Packet& found)
{
    packet.m_iPacketType = VKMXPmBase::kResponse;
    packet.m_iResponseCode = found.m_iResponseCode;
    packet.m_strResponseMessage = found.m_strResponseMessage;
    packet.m_eResponseResultType = found.m_eResponseResultType;
    XmlReaderWriter::Node result = found.m_objResponseResultNode;
    if (found.m_eResponseResultType == eRespResultXml)
        vk::mxp::ReadFields(result, packet, Packet::ResultFields());
}

} // namespace kit
