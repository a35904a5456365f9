#pragma once

#include <cstddef>
#include <memory>
#include <string>

#include <expat.h>

#include "VKMXPmEnvelope.h"
#include "VKMXPmMessage.h"

/// What the codec is measured with: messages of a size, envelopes of them, and the bare parser on the same bytes.
namespace codec {

inline std::unique_ptr<VKMXPmMessage> Message(std::size_t bodySize)
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

/// A body of 330 bytes makes about 1 KiB on the wire.
constexpr std::size_t kBodyOfOneKiB = 330;

inline std::string EnvelopeOf(std::size_t packets, std::size_t bodySize = kBodyOfOneKiB)
{
    VKMXPmEnvelope envelope;
    for (std::size_t i = 0; i < packets; ++i)
        envelope.Add(Message(bodySize).release());
    return envelope.GenerateXML();
}

/// Reads the text with expat alone, with handlers that do nothing; false when it is refused.
inline bool ReadWithExpat(const std::string& text)
{
    const std::unique_ptr<XML_ParserStruct, void (*)(XML_Parser)> parser(XML_ParserCreate("UTF-8"), XML_ParserFree);
    XML_SetElementHandler(
        parser.get(), [](void*, const char*, const char**) {}, [](void*, const char*) {});
    XML_SetCharacterDataHandler(parser.get(), [](void*, const char*, int) {});
    return XML_Parse(parser.get(), text.data(), static_cast<int>(text.size()), 1) == XML_STATUS_OK;
}

} // namespace codec
