#include <cstdint>
#include <cstdlib>

#include "VKMXPmEnvelope.h"

/// Whatever is read is written so that it reads back as the same envelope, also when all packets are turned into their
/// responses, which echo what was received.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    VKMXPmEnvelope envelope;
    const bool valid = envelope.ParseXML(std::string(reinterpret_cast<const char*>(data), size));
    if (valid != envelope.m_bValid || valid != (envelope.m_iErrorCode == 0))
        std::abort();
    for (const bool answered : {false, true}) {
        const std::string text = envelope.GenerateXML();
        VKMXPmEnvelope again;
        if (!again.ParseXML(text) || (!again.m_bRedirect && again.GetCount() != envelope.GetCount()))
            std::abort();
        if (!answered && !again.m_bRedirect && again.GenerateXML() != text)
            std::abort();
        for (VKMXPmBase* packet : envelope.m_vecModels)
            packet->m_iPacketType = VKMXPmBase::kResponse;
    }
    return 0;
}
