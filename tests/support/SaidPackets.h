#pragma once

#include "VKMXPmConfirmMsg.h"
#include "VKMXPmEnvelope.h"
#include "VKMXPmMessage.h"

#include <memory>
#include <string>

/// Packets as servers and devices send them.
namespace vktest {

/// An envelope with a packet of one kind for a job.
template <class Packet, class Fill> std::string Said(const std::string& jobId, const Fill& fill)
{
    auto packet = std::make_unique<Packet>();
    packet->m_strJobID = jobId;
    packet->m_bValid = true;
    fill(*packet);
    VKMXPmEnvelope envelope;
    envelope.Add(packet.release());
    return envelope.GenerateXML();
}

inline std::string ConfirmText(const std::string& jobId, int sequence = 7)
{
    return Said<VKMXPmConfirmMsg>(jobId, [&](VKMXPmConfirmMsg& packet) {
        packet.m_strResponse = "CONFIRM";
        packet.m_iSequence = sequence;
    });
}

inline std::unique_ptr<VKMXPmMessage> MakeMessage(const std::string& jobId,
                                                  const std::string& body = "pump 3 has stopped")
{
    auto message = std::make_unique<VKMXPmMessage>();
    message->m_strJobID = jobId;
    message->m_strSender = "control room";
    message->m_strBody = body;
    message->m_bValid = true;
    return message;
}

} // namespace vktest
