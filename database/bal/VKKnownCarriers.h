#pragma once

#include <map>
#include <optional>

#include "VKCarrier.h"
#include "VKDBiReceiver.h"

namespace vk {

/// The carriers that one check asks for, each read once: reading one attaches another file.
class KnownCarriers
{
public:
    /// The store must outlive the object.
    explicit KnownCarriers(VKDBiReceiver& receivers) : m_receivers(receivers) {}

    /// A carrier without its data; null when there is none. For 0 and the special carriers nobody is asked.
    const VK_CARRIER* Find(unsigned long id)
    {
        if (id == 0 || id >= VK_FAX_CARRIER_ID)
            return nullptr;
        const auto [known, isNew] = m_known.try_emplace(id);
        if (isNew) {
            VK_CARRIER carrier;
            if (m_receivers.GetCarrier(&carrier, id))
                known->second = carrier;
        }
        return known->second ? &*known->second : nullptr;
    }

    /// 0 for none.
    int ProtocolOf(unsigned long id)
    {
        const VK_CARRIER* const carrier = Find(id);
        return carrier == nullptr ? 0 : carrier->protocol_id;
    }

private:
    VKDBiReceiver& m_receivers;
    std::map<unsigned long, std::optional<VK_CARRIER>> m_known;
};

} // namespace vk
