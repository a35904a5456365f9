#include "CodecWork.h"
#include "GoldenEnvelopes.h"
#include "Measurements.h"
#include "Statistics.h"

#include <malloc.h>

#include <stdexcept>

namespace {

using codec::EnvelopeOf;

/// One message, and as much body as makes 1,024 bytes of it.
std::string EnvelopeOfOneKiB()
{
    std::size_t body = 300;
    std::string text = EnvelopeOf(1, body);
    for (; text.size() < 1024; text = EnvelopeOf(1, body))
        ++body;
    return text;
}

void ReadAndWrite(const std::string& text)
{
    VKMXPmEnvelope envelope;
    if (!envelope.ParseXML(text))
        throw std::runtime_error(envelope.m_strErrorText);
    Use(envelope.GenerateXML());
}

void ReadWithExpat(const std::string& text)
{
    if (!codec::ReadWithExpat(text))
        throw std::runtime_error("expat refused an envelope");
}

} // namespace

Figure PacketCodec(Stage&)
{
    const std::string text = EnvelopeOfOneKiB();
    const auto [ours, bare] = NanosecondsInTurn(
        200, 200, [&] { ReadAndWrite(text); }, [&] { ReadWithExpat(text); });
    return {ours, bare, "bare: expat alone, reading only"};
}

Figure EnvelopeOfThousand(Stage&)
{
    const std::string thousand = EnvelopeOf(1000);
    const std::string ten = EnvelopeOf(10);
    const auto [ours, few] = NanosecondsInTurn(
        20, 1, [&] { ReadAndWrite(thousand); },
        [&] {
            for (int i = 0; i < 100; ++i)
                ReadAndWrite(ten);
        });
    return {ours / 1000, few / 1000, "bare: a packet among ten"};
}

namespace {

/// One turn: the text is read, and written from what a server holds; beside it expat reads the text.
std::pair<double, double> Turn(const std::string& text, const VKMXPmEnvelope& written, int rounds, int calls)
{
    return NanosecondsInTurn(
        rounds, calls,
        [&] {
            VKMXPmEnvelope envelope;
            if (!envelope.ParseXML(text))
                throw std::runtime_error(envelope.m_strErrorText);
            Use(written.GenerateXML());
        },
        [&] { ReadWithExpat(text); });
}

} // namespace

Figure PacketKinds(Stage&)
{
    Figure worst(0, 1);
    const auto measure = [&](const std::string& name, const std::string& text, const VKMXPmEnvelope& written) {
        const auto [ours, bare] = Turn(text, written, 50, 50);
        if (ours / bare > worst.Ratio())
            worst = Figure(ours, bare, name + "; bare: expat alone, reading only");
    };
    vk::mxp::ForEachPacket([&](auto kind) {
        using Packet = typename decltype(kind)::Type;
        const std::string name = Packet::kElement;
        const std::string request = golden::Text(name + ".request.xml");
        const std::string response = golden::Text(name + ".response.xml");
        measure(name + " request", request, *golden::Read(request));
        measure(name + " response", response, *golden::Answered<Packet>(request, response));
    });
    return worst;
}

namespace {

/// What a received directory keeps of the heap for each recipient: the packet, and the document behind it.
double HeapOfEach(const std::string& text, std::size_t count)
{
    const auto inUse = [] {
        const struct mallinfo2 info = mallinfo2();
        return static_cast<double>(info.uordblks + info.hblkhd);
    };
    const double before = inUse();
    const golden::Envelope envelope = golden::Read(text);
    return (inUse() - before) / static_cast<double>(count);
}

} // namespace

/// The memory must grow no faster than the directory: a fifth more for each of 10,000 than of 1,000 is not sound.
Figure RecipientsTenThousand(Stage&)
{
    const auto perRecipient = [](std::size_t count, int rounds) {
        const golden::Envelope envelope = golden::Recipients(count);
        const auto [ours, bare] = Turn(envelope->GenerateXML(), *envelope, rounds, 1);
        return std::pair(ours / static_cast<double>(count), bare / static_cast<double>(count));
    };
    const auto [ours, bare] = perRecipient(10000, 10);
    const double oursOfThousand = perRecipient(1000, 50).first;
    const double bytes = HeapOfEach(golden::Recipients(10000)->GenerateXML(), 10000);
    const double bytesOfThousand = HeapOfEach(golden::Recipients(1000)->GenerateXML(), 1000);
    Figure figure(ours, bare,
                  "for each recipient, " + ShortNumber(bytes) + " bytes of heap; among 1,000 " +
                      ShortNumber(oursOfThousand) + " ns, " + ShortNumber(bytesOfThousand) +
                      " bytes; bare: expat alone, reading only");
    figure.sound = bytes < 1.2 * bytesOfThousand;
    return figure;
}
