#pragma once

#include <cstdint>
#include <fstream>
#include <iterator>
#include <memory>
#include <stdexcept>
#include <string>

#include "VKMXPmEnvelope.h"
#include "VKMXPmFields.h"
#include "VKMXPmPackets.h"

/// Envelopes to measure with: the golden ones of the tests, and a directory of any size.
namespace golden {

using Envelope = std::shared_ptr<VKMXPmEnvelope>;

/// The text of a golden envelope. Throws std::runtime_error when there is none.
inline std::string Text(const std::string& file)
{
    std::ifstream stream(VK_SOURCE_DIR "/tests/packets/golden/" + file, std::ios::binary);
    const std::string text{std::istreambuf_iterator<char>(stream), {}};
    if (text.empty())
        throw std::runtime_error("there is no tests/packets/golden/" + file);
    return text;
}

inline Envelope Read(const std::string& text)
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
inline Envelope Recipients(std::size_t count)
{
    Envelope envelope = Read(Text("getlist-recipients.request.xml"));
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

} // namespace golden
