#pragma once

#include <cstdint>
#include <vector>

#include "VKMXPmRecipient.h"
#include "VKMXPmTablePacket.h"

/// A client fetches receivers and groups by id. The server's side only: reads requests and writes responses.
class VKMXPmGetRecipients : public vk::mxp::TablePacket<VKMXPmGetRecipients>
{
public:
    using Recipient = VKMXPmRecipient;

    std::vector<std::int32_t> m_vecReceiverIDs;
    std::vector<std::int32_t> m_vecGroupIDs;
    VKMXPmRecipientDetails m_objDetails;
    std::vector<Recipient> m_vecRecipients; ///< response

    static constexpr char kElement[] = "get-recipients";
    static constexpr bool kWritesParams = false;
    static constexpr bool kReadsResult = false;

    static constexpr auto ParamFields()
    {
        using P = VKMXPmGetRecipients;
        using namespace vk::mxp;
        return Fields(
            Group("receivers", Fields(Group("ids", Fields(Field<&P::m_vecReceiverIDs>("id", Items{})), Optional{}))),
            Group("groups", Fields(Group("ids", Fields(Field<&P::m_vecGroupIDs>("id", Items{})), Optional{}))),
            Field<&P::m_objDetails>("requires"));
    }

    /// What was asked for by id comes as one page, the last.
    static constexpr auto ResultFields()
    {
        using P = VKMXPmGetRecipients;
        using namespace vk::mxp;
        return Fields(Group("recipients",
                            Fields(Field<&P::m_vecRecipients>("count", CountOf{}), FixedRow{"page_nr", "1"},
                                   Field<&P::m_vecRecipients>("page_size", CountOf{}), FixedRow{"is_last", "true"},
                                   Field<&P::m_vecRecipients>("recipient", Items{})),
                            NoLineFeed{}));
    }
};

extern template class vk::mxp::TablePacket<VKMXPmGetRecipients>;
