#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "VKMXPmRecipient.h"
#include "VKMXPmTablePacket.h"

/// A client pages through recipients of all kinds. The server's side only: reads requests and writes responses.
class VKMXPmGetListRecipients : public vk::mxp::TablePacket<VKMXPmGetListRecipients>
{
public:
    using Recipient = VKMXPmRecipient;

    std::string m_strTextFilter;
    std::string m_strAttributeFilter;
    bool m_bGroupsEnabled = false;
    VKMXPmRecipientDetails m_objDetails;
    std::int32_t m_iPageNumber = 1;
    std::int32_t m_iPageSize = 10;
    std::vector<Recipient> m_vecRecipients; ///< response
    std::int32_t m_iResponsePageNumber = 1; ///< response
    std::int32_t m_iResponsePageSize = 1;   ///< response
    bool m_bLastPage = false;               ///< response

    static constexpr char kElement[] = "getlist-recipients";
    static constexpr bool kWritesParams = false;
    static constexpr bool kReadsResult = false;

    static constexpr auto ParamFields()
    {
        using P = VKMXPmGetListRecipients;
        using namespace vk::mxp;
        return Fields(
            Group("filter", Fields(Field<&P::m_strTextFilter>("text"), Field<&P::m_strAttributeFilter>("attribute"),
                                   Field<&P::m_bGroupsEnabled>("groups", InAttribute{"enabled"}, InWords{}))),
            Field<&P::m_objDetails>("requires"), Field<&P::m_iPageNumber>("page-nr"),
            Field<&P::m_iPageSize>("page-size"));
    }

    static constexpr auto ResultFields()
    {
        using P = VKMXPmGetListRecipients;
        using namespace vk::mxp;
        return Fields(Group("recipients",
                            Fields(Field<&P::m_vecRecipients>("count", CountOf{}),
                                   Field<&P::m_iResponsePageNumber>("page_nr", Attribute{}),
                                   Field<&P::m_iResponsePageSize>("page_size", Attribute{}),
                                   Flag<&P::m_bLastPage>("is_last", Attribute{}),
                                   Field<&P::m_vecRecipients>("recipient", Items{})),
                            NoLineFeed{}));
    }
};

extern template class vk::mxp::TablePacket<VKMXPmGetListRecipients>;
