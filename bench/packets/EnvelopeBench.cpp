#include <benchmark/benchmark.h>

#include <string>

#include "CodecWork.h"

/// The wire format beside the bare parser on the same bytes. One whole turn reads an envelope and writes it again.

namespace {

void Report(benchmark::State& state, const std::string& text)
{
    state.counters["bytes"] = static_cast<double>(text.size());
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(text.size()));
}

void BareExpat(benchmark::State& state)
{
    const std::string text = codec::EnvelopeOf(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state)
        if (!codec::ReadWithExpat(text))
            state.SkipWithError("refused");
    Report(state, text);
}

void ParseAndGenerate(benchmark::State& state)
{
    const std::string text = codec::EnvelopeOf(static_cast<std::size_t>(state.range(0)));
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
    const std::string text = codec::EnvelopeOf(static_cast<std::size_t>(state.range(0)));
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
        envelope.Add(codec::Message(codec::kBodyOfOneKiB).release());
    for (auto _ : state)
        benchmark::DoNotOptimize(envelope.GenerateXML());
    Report(state, envelope.GenerateXML());
}

void ReadDocument(benchmark::State& state)
{
    const std::string text = codec::EnvelopeOf(static_cast<std::size_t>(state.range(0)));
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
