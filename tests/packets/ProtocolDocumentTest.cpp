#include <cstdlib>
#include <set>

#include "PacketKit.h"
#include "VKMXPmPlaces.h"

/// docs/protocol.md has a block for each kind of packet, written from the kind's tables and its golden texts. Run this
/// with VK_WRITE_DOCS=1 in the environment to write the blocks anew.

namespace {

constexpr char kDocument[] = VK_SOURCE_DIR "/docs/protocol.md";

std::string Rule(const vk::mxp::FieldPlace& place)
{
    using What = vk::mxp::FieldPlace::What;
    if (place.what == What::Item)
        return "any number";
    if (place.what == What::Contents)
        return "";
    return place.mayMiss ? (place.notEmpty ? "optional, not empty" : "optional")
                         : (place.notEmpty ? "required, not empty" : "required");
}

std::string Rows(const vk::mxp::FieldPlaces& places)
{
    std::string rows;
    for (const auto& place : places) {
        std::string name;
        for (const std::string& element : place.path)
            name += (name.empty() ? "" : "/") + element;
        name += place.attribute.empty() ? "" : "@" + place.attribute;
        const char* what = place.what == vk::mxp::FieldPlace::What::Contents ? "contents of " : "";
        rows += std::string("| ") + what + "`" + (name.empty() ? "result" : name) + "` | " + place.form + " | " +
                Rule(place) + " |\n";
    }
    return rows;
}

std::string Table(const std::string& title, const std::string& rows)
{
    return rows.empty() ? "`" + title + "` is empty.\n\n"
                        : "| In `" + title + "` | Value | |\n|---|---|---|\n" + rows + "\n";
}

std::string Example(const std::string& title, const std::string& text)
{
    return title + ":\n\n```xml\n" + text + "\n```\n";
}

/// The block of a kind: who sends it, its tables, a request and the response to it.
template <class Packet> std::string Block()
{
    const auto packet = kit::Only<Packet>(kit::Golden(Packet::kElement, "request"));
    const auto answer = kit::Only<Packet>(kit::Golden(Packet::kElement, "response"));
    if (!packet || !answer)
        return "";
    const std::string parameters = vk::mxp::ParamsOnWire(*packet);
    std::string request, response;
    packet->AppendXML(request, parameters);
    kit::Answer(*packet, *answer);
    packet->AppendXML(response, parameters);
    return std::string("Sent by the ") + (Packet::kServerSends ? "server" : "client") + ".\n\n" +
           Table("parameters", Rows(vk::mxp::PlacesOf<Packet>(Packet::ParamFields()))) +
           Table("result", Rows(vk::mxp::PlacesOf<Packet>(Packet::ResultFields()))) + Example("Request", request) +
           "\n" + Example("Response", response);
}

std::string Begin(const std::string& name) { return "<!-- " + name + " -->\n"; }
std::string End(const std::string& name) { return "<!-- /" + name + " -->\n"; }

TEST(ProtocolDocument, ShowsEveryKindAsItsTablesHaveIt)
{
    std::string document = kit::ReadFile(kDocument);
    vk::mxp::ForEachPacket([&](auto kind) {
        using Packet = typename decltype(kind)::Type;
        const std::string name = Packet::kElement;
        const std::size_t begin = document.find(Begin(name));
        const std::size_t end = document.find(End(name));
        ASSERT_TRUE(begin != std::string::npos && end != std::string::npos) << "no block for " << name;
        const std::size_t inside = begin + Begin(name).size();
        const std::string block = Block<Packet>();
        if (std::getenv("VK_WRITE_DOCS"))
            document.replace(inside, end - inside, block);
        else
            EXPECT_EQ(document.substr(inside, end - inside), block) << "stale; write it anew with VK_WRITE_DOCS=1";
    });
    if (std::getenv("VK_WRITE_DOCS"))
        std::ofstream(kDocument, std::ios::binary) << document;
}

TEST(ProtocolDocument, HasOnlyExamplesThatAreRead)
{
    const std::string document = kit::ReadFile(kDocument);
    std::multiset<std::string> seen;
    constexpr std::string_view fence = "```xml\n";
    for (std::size_t at = document.find(fence); at != std::string::npos; at = document.find(fence, at + 1)) {
        const std::size_t begin = at + fence.size();
        const std::string example = document.substr(begin, document.find("\n```", begin) - begin);
        VKMXPmEnvelope envelope;
        EXPECT_TRUE(envelope.ParseXML(kit::Envelope(example))) << envelope.m_strErrorText << "\n" << example;
        for (const VKMXPmBase* packet : envelope.m_vecModels)
            seen.insert(packet->GetName() + std::to_string(packet->m_iPacketType));
    }
    vk::mxp::ForEachPacket([&](auto kind) {
        for (const char* type : {"1", "2"})
            EXPECT_EQ(seen.count(decltype(kind)::Type::kElement + std::string(type)), 1u)
                << decltype(kind)::Type::kElement << " " << type;
    });
}

TEST(ProtocolDocument, TellsTheErrorsAsTheyAre)
{
    const std::string document = kit::ReadFile(kDocument);
    for (const std::string& text :
         {std::string(), std::string("<mxp"), std::string("<mxq/>"), kit::Envelope("", "other"),
          kit::Envelope("<set-msg-status xmlns='vardock:mxp:request' type='request'/>"), kit::Envelope("<unknown/>")}) {
        VKMXPmEnvelope envelope;
        EXPECT_FALSE(envelope.ParseXML(text));
        EXPECT_NE(document.find("| " + std::to_string(envelope.m_iErrorCode) + " | " + envelope.m_strErrorText + " |"),
                  std::string::npos)
            << envelope.m_strErrorText;
    }
}

} // namespace
