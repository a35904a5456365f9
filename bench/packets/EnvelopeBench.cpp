#include <benchmark/benchmark.h>

#include <memory>
#include <string>

#include <expat.h>

#include "VKMXPmEnvelope.h"
#include "VKMXPmMessage.h"

/// The wire format beside the bare parser on the same bytes. One whole turn reads an envelope and writes it again.

namespace {

std::unique_ptr<VKMXPmMessage> Message(std::size_t bodySize)
{
    auto message = std::make_unique<VKMXPmMessage>();
    message->m_strJobID = "20240101120000_4711";
    message->m_strSender = "Emergency Desk";
    message->m_tDispatchTime = 1700000000;
    message->m_iSeverity = 3;
    message->m_strSubject = "Fire alarm, building 7";
    const std::string line = "Smoke on the 3rd floor; \"east\" stairs closed. ";
    while (message->m_strBody.size() < bodySize)
        message->m_strBody += line;
    message->m_strBody.resize(bodySize);
    message->m_vecResponseChoices = {"On my way", "Cannot come"};
    message->m_bTwoWay = true;
    message->m_bValid = true;
    return message;
}

/// An envelope of this many messages, each of about 1 KiB on the wire.
std::string EnvelopeOf(std::size_t packets)
{
    VKMXPmEnvelope envelope;
    for (std::size_t i = 0; i < packets; ++i)
        envelope.Add(Message(330).release());
    return envelope.GenerateXML();
}

void Report(benchmark::State& state, const std::string& text)
{
    state.counters["bytes"] = static_cast<double>(text.size());
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(text.size()));
}

void BareExpat(benchmark::State& state)
{
    const std::string text = EnvelopeOf(static_cast<std::size_t>(state.range(0)));
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

void ParseAndGenerate(benchmark::State& state)
{
    const std::string text = EnvelopeOf(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        VKMXPmEnvelope envelope;
        if (!envelope.ParseXML(text))
            state.SkipWithError(envelope.m_strErrorText.c_str());
        benchmark::DoNotOptimize(envelope.GenerateXML());
    }
    Report(state, text);
}

void ParseOnly(benchmark::State& state)
{
    const std::string text = EnvelopeOf(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        VKMXPmEnvelope envelope;
        benchmark::DoNotOptimize(envelope.ParseXML(text));
    }
    Report(state, text);
}

void GenerateOnly(benchmark::State& state)
{
    VKMXPmEnvelope envelope;
    for (int64_t i = 0; i < state.range(0); ++i)
        envelope.Add(Message(330).release());
    for (auto _ : state)
        benchmark::DoNotOptimize(envelope.GenerateXML());
    Report(state, envelope.GenerateXML());
}

void ReadDocument(benchmark::State& state)
{
    const std::string text = EnvelopeOf(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        XmlReaderWriter document;
        benchmark::DoNotOptimize(document.readFrom(text));
    }
    Report(state, text);
}

} // namespace

BENCHMARK(BareExpat)->Arg(1)->Arg(1000);
BENCHMARK(ParseAndGenerate)->Arg(1)->Arg(10)->Arg(100)->Arg(1000);
BENCHMARK(ReadDocument)->Arg(1)->Arg(1000);
BENCHMARK(ParseOnly)->Arg(1);
BENCHMARK(GenerateOnly)->Arg(1);
