#include "PacketCommands.h"

#include "AdminInput.h"
#include "PacketFields.h"
#include "VKMXPmEnvelope.h"
#include "VKMXPmFields.h"
#include "VKMXPmPackets.h"
#include "VKMXPmPlaces.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iostream>
#include <iterator>
#include <limits>
#include <memory>

namespace vk {

namespace {

constexpr char kResultPrefix[] = "result.";
constexpr char kBlanks[] = " \t\r\n";
constexpr char kLine[] = "line ";

// Showing.

/// Keys "a.b.1.c" as objects in objects; a number stands for the item of an array.
Json::Value Nested(const ShownRecord& fields)
{
    Json::Value root(Json::objectValue);
    for (const auto& [key, value] : fields) {
        Json::Value* at = &root;
        for (std::size_t begin = 0; begin <= key.size();) {
            const std::size_t end = std::min(key.find('.', begin), key.size());
            const std::string word = key.substr(begin, end - begin);
            const bool number = word.find_first_not_of("0123456789") == std::string::npos;
            at = number ? &(*at)[static_cast<Json::ArrayIndex>(std::stoul(word) - 1)] : &(*at)[word];
            begin = end + 1;
        }
        *at = value;
    }
    return root;
}

ShownRecord ParametersOf(VKMXPmBase& base)
{
    ShownRecord shown;
    mxp::WithPacket(base, [&](auto& packet) {
        using Packet = std::decay_t<decltype(packet)>;
        ShowFields(packet, Packet::ParamFields(), "", shown);
    });
    return shown;
}

/// What stands in a result of type XML, also where the server's packet does not read it.
ShownRecord ResultOf(VKMXPmBase& base)
{
    ShownRecord shown;
    mxp::WithPacket(base, [&](auto packet) {
        using Packet = std::decay_t<decltype(packet)>;
        try {
            if (!packet.m_objResponseResultNode.isNull())
                mxp::ReadFields(packet.m_objResponseResultNode, packet, Packet::ResultFields());
        } catch (const XmlReaderWriter::NodeException&) {
            return; // not the shape of this kind, and nobody reads it
        }
        ShowFields(packet, Packet::ResultFields(), "", shown);
    });
    return shown;
}

const char* TypeOf(const VKMXPmBase& packet)
{
    return packet.m_iPacketType == VKMXPmBase::kRequest ? "request" : "response";
}

ShownRecord ShownPacket(VKMXPmBase& packet)
{
    ShownRecord shown = {{"packet", packet.GetName()},
                         {"type", TypeOf(packet)},
                         {"seq", packet.m_iSequence},
                         {"parameters", Nested(ParametersOf(packet))}};
    if (packet.m_iPacketType == VKMXPmBase::kRequest)
        return shown;
    const bool xml = packet.m_eResponseResultType == eRespResultXml;
    Json::Value response(Json::objectValue);
    response["code"] = packet.m_iResponseCode;
    response["err_code"] = packet.m_iResponseErrorCode;
    response["message"] = packet.m_strResponseMessage;
    response["result_type"] = VKMXPmBase::GetResponseResultTypeAsStr(packet.m_eResponseResultType);
    response["result"] = xml ? Nested(ResultOf(packet)) : Json::Value(packet.m_strResponseResultText);
    shown.emplace_back("response", response);
    return shown;
}

void PrintPacket(VKMXPmBase& packet, bool json)
{
    if (json)
        return PrintRecord(ShownPacket(packet), true);
    std::printf("%s %s, seq %d\n", packet.GetName(), TypeOf(packet), packet.m_iSequence);
    ShownRecord lines = ParametersOf(packet);
    if (packet.m_iPacketType != VKMXPmBase::kRequest) {
        lines.emplace_back("code", packet.m_iResponseCode);
        lines.emplace_back("err-code", packet.m_iResponseErrorCode);
        lines.emplace_back("message", packet.m_strResponseMessage);
        for (auto& [key, value] : ResultOf(packet))
            lines.emplace_back(kResultPrefix + key, value);
        if (packet.m_eResponseResultType != eRespResultXml)
            lines.emplace_back("result", packet.m_strResponseResultText);
    }
    for (auto& [key, value] : lines)
        key.insert(0, "    ");
    PrintRecord(lines, false);
}

// Where an envelope is refused.

struct Refusal
{
    std::size_t line = 1;
    std::string detail; ///< the packet at fault, or what the parser says
};

std::size_t LineAt(const std::string& text, std::size_t position)
{
    return 1 + static_cast<std::size_t>(
                   std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(position), '\n'));
}

/// The element after the packets that were read, or what stops the document from being one.
Refusal RefusalOf(const std::string& text, std::size_t read)
{
    Refusal refusal;
    XmlReaderWriter document;
    if (!document.readFrom(text)) {
        const std::string& error = document.parseError(); // "line 3: mismatched tag"
        const bool placed = error.rfind(kLine, 0) == 0 && error.find(": ") != std::string::npos;
        if (placed)
            refusal.line = std::strtoul(error.c_str() + std::strlen(kLine), nullptr, 10);
        refusal.detail = placed ? error.substr(error.find(": ") + 2) : error;
        return refusal;
    }
    std::size_t position = 0;
    auto child = document.getRootNode().firstChild();
    for (std::size_t i = 0; !child.isNull(); ++i, child = child.nextSibling()) {
        position = text.find(child.sourceText(), position);
        if (i == read) {
            refusal.line = LineAt(text, position);
            refusal.detail = "packet " + std::to_string(i + 1) + ", '" + std::string(child.nameText()) + "'";
            break;
        }
        position += child.sourceText().size();
    }
    return refusal;
}

int PrintRefusal(const std::string& name, const std::string& text, const VKMXPmEnvelope& envelope, bool json)
{
    const Refusal refusal = RefusalOf(text, envelope.GetCount());
    if (json)
        PrintRecord({{"error", envelope.m_iErrorCode},
                     {"text", envelope.m_strErrorText},
                     {"line", static_cast<Json::UInt64>(refusal.line)},
                     {"detail", refusal.detail}},
                    true);
    return Refused(name + ": line " + std::to_string(refusal.line) + ": " + std::to_string(envelope.m_iErrorCode) +
                   " " + envelope.m_strErrorText + (refusal.detail.empty() ? "" : " (" + refusal.detail + ")"));
}

// Making.

std::unique_ptr<VKMXPmBase> NewPacket(const std::string& name)
{
    std::string names;
    for (const auto& [element, make] : VKMXPmEnvelope::arrModelMap) {
        if (element && name == element)
            return std::unique_ptr<VKMXPmBase>(make());
        names += element ? std::string(names.empty() ? "" : ", ") + element : "";
    }
    throw UsageError("'" + name + "' is no packet; there are " + names);
}

FieldKey KeyOf(const std::string& text)
{
    FieldKey key{text, {}, 0};
    for (std::size_t begin = 0; begin <= text.size();) {
        const std::size_t end = std::min(text.find('.', begin), text.size());
        key.words.push_back(text.substr(begin, end - begin));
        begin = end + 1;
    }
    return key;
}

template <class Packet> std::string KeysOf(bool response)
{
    std::string keys;
    const auto add = [&](const mxp::FieldPlaces& places, const char* prefix) {
        for (const auto& place : places)
            if (!place.key.empty())
                keys += (keys.empty() ? "" : ", ") + (prefix + place.key);
    };
    add(mxp::PlacesOf<Packet>(Packet::ParamFields()), "");
    if (response)
        add(mxp::PlacesOf<Packet>(Packet::ResultFields()), kResultPrefix);
    return keys.empty() ? "no fields" : keys;
}

template <class Packet> void SetOperand(Packet& packet, const std::string& operand)
{
    const std::size_t equals = operand.find('=');
    const std::string name = operand.substr(0, equals);
    if (equals == std::string::npos)
        throw UsageError("'" + operand + "' is no KEY=VALUE");
    const bool response = packet.m_iPacketType == VKMXPmBase::kResponse;
    const bool result = name.rfind(kResultPrefix, 0) == 0;
    const std::string value = operand.substr(equals + 1);
    const FieldKey key = KeyOf(name);
    const bool set = result ? response && SetField(packet, Packet::ResultFields(), key.Behind(), value)
                            : SetField(packet, Packet::ParamFields(), key, value);
    if (!set)
        throw UsageError(std::string(Packet::kElement) + " has no '" + name + "'; it has " + KeysOf<Packet>(response));
    if (result && packet.m_eResponseResultType == eRespResultNone)
        packet.m_eResponseResultType = eRespResultXml;
}

template <class Packet> void CheckFilled(const Packet& packet)
{
    mxp::ForEachFlatField(Packet::ParamFields(), [&](const auto& row) {
        using Row = std::decay_t<decltype(row)>;
        if constexpr (Row::template has<mxp::NotEmpty>)
            if (!mxp::FieldsFilled(packet, Fields(row)))
                throw UsageError(std::string(Packet::kElement) + ": " + row.name + " is missing");
    });
}

template <class Packet> std::string Written(Packet& packet, const Arguments& arguments)
{
    const auto& operands = arguments.Operands();
    if constexpr (std::is_base_of_v<VKMXPClientPermissions, Packet>)
        if (operands.size() > 1) // only what is told: what is left out is not to be taken away
            static_cast<VKMXPClientPermissions&>(packet) = {};
    for (std::size_t i = 1; i < operands.size(); ++i)
        SetOperand(packet, operands[i]);
    if (packet.m_iPacketType == VKMXPmBase::kRequest)
        CheckFilled(packet);
    std::string text;
    packet.AppendXML(text, mxp::ParamsOnWire(packet));
    return text;
}

void SetHead(VKMXPmBase& packet, const Arguments& arguments)
{
    constexpr long long least = std::numeric_limits<std::int32_t>::min();
    constexpr long long most = std::numeric_limits<std::int32_t>::max();
    const auto number = [&](const char* option) {
        return static_cast<std::int32_t>(arguments.Number(option, least, most, 0));
    };
    packet.m_iSequence = number("--seq");
    if (!arguments.Has("--response")) {
        for (const char* option : {"--err-code", "--message", "--result-type"})
            if (arguments.Has(option))
                throw UsageError(std::string(option) + " is for a response only: give --response as well");
        return;
    }
    packet.m_iPacketType = VKMXPmBase::kResponse;
    packet.m_iResponseCode = number("--response");
    packet.m_iResponseErrorCode = number("--err-code");
    packet.m_strResponseMessage = arguments.Text("--message");
    packet.m_eResponseResultType = VKMXPmBase::GetResponseResultTypeAsEnum(arguments.Text("--result-type", "none"));
}

} // namespace

int ParsePacket(const Arguments& arguments)
{
    const std::string& name = arguments.Operands().front();
    const std::string text = ReadInput(name);
    const bool json = arguments.Has("--json");
    VKMXPmEnvelope envelope;
    const bool valid = envelope.ParseXML(text);
    for (VKMXPmBase* packet : envelope.m_vecModels)
        PrintPacket(*packet, json);
    if (!valid)
        return PrintRefusal(name, text, envelope, json);
    if (text.rfind("<mxp xmlns='vardock:mxp", 0) != 0 && text.rfind("<mxp xmlns=\"vardock:mxp", 0) != 0)
        return Refused(name + ": line 1: taken for a chat message: it does not begin with <mxp xmlns='vardock:mxp");
    if (envelope.m_bRedirect || envelope.GetCount() == 0)
        PrintDone(envelope.m_bRedirect ? "redirect, no packets are read" : "no packets",
                  {{"redirect", envelope.m_bRedirect}, {"packets", 0}}, json);
    return kExitOk;
}

int MakePacket(const Arguments& arguments)
{
    const std::unique_ptr<VKMXPmBase> packet = NewPacket(arguments.Operands().front());
    SetHead(*packet, arguments);
    std::string text = VKMXPmEnvelope().GenerateXML();
    mxp::WithPacket(*packet, [&](auto& known) { text.insert(text.rfind("</mxp>"), Written(known, arguments) + "\n"); });
    VKMXPmEnvelope proof;
    if (!proof.ParseXML(text))
        return PrintRefusal(packet->GetName(), text, proof, false);
    PrintDone(text, {{"envelope", text}}, arguments.Has("--json"));
    return kExitOk;
}

} // namespace vk
