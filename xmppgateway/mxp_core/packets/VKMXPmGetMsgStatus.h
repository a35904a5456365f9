#pragma once

#include <string>
#include <vector>

#include "VKMXPmTablePacket.h"

/// A client asks what became of a job; the response has a row for each message of it.
class VKMXPmGetMsgStatus : public vk::mxp::TablePacket<VKMXPmGetMsgStatus>
{
public:
    struct JobStatus
    {
        std::string m_strID;
        std::string m_strTo;
        std::string m_strStatus;
        std::string m_strDescription;
        unsigned long m_ulTime = 0; ///< seconds since the epoch

        static constexpr auto Fields()
        {
            using R = JobStatus;
            using namespace vk::mxp;
            return vk::Fields(Field<&R::m_strID>("id", Attribute{}), Field<&R::m_strTo>("to", Attribute{}),
                              Field<&R::m_strStatus>("status", Attribute{}), Field<&R::m_ulTime>("at", Attribute{}),
                              Field<&R::m_strDescription>("job", Contents{}));
        }
    };

    std::string m_strJobID;
    std::vector<JobStatus> m_vecStatuses; ///< response

    static constexpr char kElement[] = "get-msg-status";

    static constexpr auto ParamFields()
    {
        using P = VKMXPmGetMsgStatus;
        using namespace vk::mxp;
        return Fields(Field<&P::m_strJobID>("jobid", NotEmpty{}));
    }

    static constexpr auto ResultFields()
    {
        using P = VKMXPmGetMsgStatus;
        using namespace vk::mxp;
        return Fields(Group(
            "statuses", Fields(Field<&P::m_vecStatuses>("count", CountOf{}), Field<&P::m_vecStatuses>("job", Items{})),
            ClosedWhenEmpty{}, NoLineFeed{}));
    }
};

extern template class vk::mxp::TablePacket<VKMXPmGetMsgStatus>;
