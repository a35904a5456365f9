#include <benchmark/benchmark.h>

#include <fstream>
#include <iterator>
#include <memory>
#include <stdexcept>
#include <string>

#include <expat.h>

#include "VKMXPmEnvelope.h"
#include "VKMXPmFields.h"
#include "VKMXPmPackets.h"

/// Every kind of packet beside the bare parser on the same bytes: one whole turn reads an envelope with one packet and
/// writes the same bytes. And a directory response of many recipients, which must cost no more for each than one of
/// few.

namespace {

std::string Golden(const std::string& file)
{
    std::ifstream stream(VK_SOURCE_DIR "/tests/packets/golden/" + file, std::ios::binary);
    const std::string text{std::istreambuf_iterator<char>(stream), {}};
    if (text.empty())
        throw std::runtime_error("there is no tests/packets/golden/" + file);
    return text;
}

void Report(benchmark::State& state, const std::string& text)
{
    state.counters["bytes"] = static_cast<double>(text.size());
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(text.size()));
}

void Bare(benchmark::State& state, const std::string& text)
{
    for (auto _ : state) {
        XML_Parser parser = XML_ParserCreate("UTF-8");
        XML_SetElementHandler(
            parser, [](void*, const char*, const char**) {}, [](void*, const char*) {});
        XML_SetCharacterDataHandler(parser, [](void*, const char*, int) {});
        if (XML_Parse(parser, text.data(), static_cast<int>(text.size()), 1) != XML_STATUS_OK)
            state.SkipWithError("refused");
        XML_ParserFree(parser);
    }
    Report(state, text);
}

using Envelope = std::shared_ptr<VKMXPmEnvelope>;

void Turn(benchmark::State& state, const std::string& text, const Envelope& written)
{
    for (auto _ : state) {
        VKMXPmEnvelope envelope;
        if (!envelope.ParseXML(text))
            state.SkipWithError(envelope.m_strErrorText.c_str());
        benchmark::DoNotOptimize(written->GenerateXML());
    }
    Report(state, text);
}

void Register(const std::string& name, const std::string& text, const Envelope& written)
{
    benchmark::RegisterBenchmark((name + "/expat").c_str(), Bare, text);
    benchmark::RegisterBenchmark((name + "/turn").c_str(), Turn, text, written);
}

Envelope Read(const std::string& text)
{
    auto envelope = std::make_shared<VKMXPmEnvelope>();
    if (!envelope->ParseXML(text))
        throw std::runtime_error(envelope->m_strErrorText);
    return envelope;
}

/// The response to a request as a server holds it: what clients alone read is filled in too.
template <class Packet> Envelope Answered(const std::string& request, const std::string& response)
{
    Envelope envelope = Read(request);
    auto& packet = dynamic_cast<Packet&>(*envelope->Get(0));
    const Envelope answered = Read(response);
    const auto& answer = *answered->Get(0);
    packet.m_iPacketType = VKMXPmBase::kResponse;
    packet.m_iResponseCode = answer.m_iResponseCode;
    packet.m_strResponseMessage = answer.m_strResponseMessage;
    packet.m_eResponseResultType = answer.m_eResponseResultType;
    XmlReaderWriter::Node result = answer.m_objResponseResultNode;
    if (!result.isNull())
        vk::mxp::ReadFields(result, packet, Packet::ResultFields());
    if (envelope->GenerateXML() != response)
        throw std::runtime_error(std::string(packet.GetName()) + " does not write what it was given");
    return envelope;
}

/// A response of this many recipients.
Envelope Recipients(std::size_t count)
{
    Envelope envelope = Read(Golden("getlist-recipients.request.xml"));
    auto& packet = dynamic_cast<VKMXPmGetListRecipients&>(*envelope->Get(0));
    packet.m_iPacketType = VKMXPmBase::kResponse;
    packet.m_eResponseResultType = eRespResultXml;
    for (std::size_t i = 0; i < count; ++i) {
        auto& recipient = packet.m_vecRecipients.emplace_back();
        recipient.m_iID = static_cast<std::int32_t>(i);
        recipient.m_strName = "pager-" + std::to_string(i);
        recipient.m_strFirstName = "Alice";
        recipient.m_strLastName = "O'Hara";
        recipient.m_strDepartment = "Ward 3 & 4";
        recipient.m_vecAttributes = {"lang=de", "shift=night"};
        recipient.m_strProtocolType = "MXP";
        recipient.m_strProtocolValue = "alice@example.org";
    }
    return envelope;
}

const bool kRegistered = [] {
    vk::mxp::ForEachPacket([](auto kind) {
        using Packet = typename decltype(kind)::Type;
        const std::string name = Packet::kElement;
        const std::string request = Golden(name + ".request.xml");
        const std::string response = Golden(name + ".response.xml");
        Register(name + ".request", request, Read(request));
        Register(name + ".response", response, Answered<Packet>(request, response));
    });
    for (const std::size_t count : {10, 100, 1000, 10000}) {
        const Envelope envelope = Recipients(count);
        Register("recipients_" + std::to_string(count), envelope->GenerateXML(), envelope);
    }
    return true;
}();

} // namespace
