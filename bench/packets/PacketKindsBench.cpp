#include <benchmark/benchmark.h>

#include <string>

#include "CodecWork.h"
#include "GoldenEnvelopes.h"

/// Every kind of packet beside the bare parser on the same bytes: one whole turn reads an envelope with one packet and
/// writes the same bytes. And a directory response of many recipients, which must cost no more for each than one of
/// few.

namespace {

void Report(benchmark::State& state, const std::string& text)
{
    state.counters["bytes"] = static_cast<double>(text.size());
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(text.size()));
}

void Bare(benchmark::State& state, const std::string& text)
{
    for (auto _ : state)
        if (!codec::ReadWithExpat(text))
            state.SkipWithError("refused");
    Report(state, text);
}

void Turn(benchmark::State& state, const std::string& text, const golden::Envelope& written)
{
    for (auto _ : state) {
        VKMXPmEnvelope envelope;
        if (!envelope.ParseXML(text))
            state.SkipWithError(envelope.m_strErrorText.c_str());
        benchmark::DoNotOptimize(written->GenerateXML());
    }
    Report(state, text);
}

void Register(const std::string& name, const std::string& text, const golden::Envelope& written)
{
    benchmark::RegisterBenchmark((name + "/expat").c_str(), Bare, text);
    benchmark::RegisterBenchmark((name + "/turn").c_str(), Turn, text, written);
}

const bool kRegistered = [] {
    vk::mxp::ForEachPacket([](auto kind) {
        using Packet = typename decltype(kind)::Type;
        const std::string name = Packet::kElement;
        const std::string request = golden::Text(name + ".request.xml");
        const std::string response = golden::Text(name + ".response.xml");
        Register(name + ".request", request, golden::Read(request));
        Register(name + ".response", response, golden::Answered<Packet>(request, response));
    });
    for (const std::size_t count : {10, 100, 1000, 10000}) {
        const golden::Envelope envelope = golden::Recipients(count);
        Register("recipients_" + std::to_string(count), envelope->GenerateXML(), envelope);
    }
    return true;
}();

} // namespace
