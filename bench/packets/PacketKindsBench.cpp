#include <benchmark/benchmark.h>

#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

#include <expat.h>

#include "VKMXPmEnvelope.h"
#include "VKMXPmPackets.h"

/// Every kind of packet beside the bare parser on the same bytes: one whole turn reads an envelope with one packet and
/// writes it again. And a directory response of many recipients, which must cost no more for each than one of few.

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

void Turn(benchmark::State& state, const std::string& text)
{
    for (auto _ : state) {
        VKMXPmEnvelope envelope;
        if (!envelope.ParseXML(text))
            state.SkipWithError(envelope.m_strErrorText.c_str());
        benchmark::DoNotOptimize(envelope.GenerateXML());
    }
    Report(state, text);
}

void Register(const std::string& name, const std::string& text)
{
    benchmark::RegisterBenchmark((name + "/expat").c_str(), Bare, text);
    benchmark::RegisterBenchmark((name + "/turn").c_str(), Turn, text);
}

/// A response of this many recipients, as a server writes it.
std::string Recipients(std::size_t count)
{
    VKMXPmEnvelope golden;
    golden.ParseXML(Golden("getlist-recipients.request.xml"));
    auto& packet = dynamic_cast<VKMXPmGetListRecipients&>(*golden.Get(0));
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
        recipient.m_bStatusEnabled = true;
    }
    return golden.GenerateXML();
}

const bool kRegistered = [] {
    vk::ForEachPacket([](auto kind) {
        const std::string name = decltype(kind)::Type::kElement;
        for (const char* which : {"request", "response"})
            Register(name + "." + which, Golden(name + "." + which + ".xml"));
    });
    for (const std::size_t count : {10, 100, 1000, 10000})
        Register("recipients_" + std::to_string(count), Recipients(count));
    return true;
}();

} // namespace
