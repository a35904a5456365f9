#include <cstdint>
#include <cstdlib>

#include "VKMXPmEnvelope.h"
#include "VKMXPmFields.h"
#include "VKMXPmPackets.h"

namespace {

void Require(bool holds)
{
    if (!holds)
        std::abort();
}

/// A packet in the form that its reader takes.
template <class Packet> std::string Sent(const Packet& packet)
{
    std::string text;
    packet.AppendXML(text, vk::mxp::ParamsForReader(packet));
    return text;
}

/// What one side reads and sends on, the other reads as the same.
template <class Packet> void ReadAgain(const Packet& packet)
{
    const std::string text = Sent(packet);
    Packet again;
    Require(again.ParseXML(text));
    // Strings of blanks and the last digits of a real number are gone after one turn, nothing after the next.
    const std::string settled = Sent(again);
    Packet last;
    Require(last.ParseXML(settled) && Sent(last) == settled);
    Require(vk::mxp::SameParameters(again, last) && vk::mxp::SameFields(again, last, Packet::ResultFields()));
}

/// A request that is answered gives a response with the received parameters, which reads back.
template <class Packet> void Answer(Packet packet)
{
    packet.m_iPacketType = VKMXPmBase::kResponse;
    packet.m_eResponseResultType = eRespResultXml;
    Packet answer;
    Require(answer.ParseXML(packet.GenerateXML()) && vk::mxp::SameParameters(packet, answer));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    VKMXPmEnvelope envelope;
    const bool valid = envelope.ParseXML(std::string(reinterpret_cast<const char*>(data), size));
    Require(valid == envelope.m_bValid && valid == (envelope.m_iErrorCode == 0));

    XmlReaderWriter document;
    Require(document.readFrom(envelope.GenerateXML()));
    for (VKMXPmBase* model : envelope.m_vecModels) {
        const bool known = vk::mxp::WithPacket(*model, [](auto& packet) {
            ReadAgain(packet);
            if (packet.m_iPacketType == VKMXPmBase::kRequest)
                Answer(packet);
        });
        Require(known);
    }
    return 0;
}
