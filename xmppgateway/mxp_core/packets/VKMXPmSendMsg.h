#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "VKMXPmTablePacket.h"

/// A client asks the server to send a message. Everything is optional. The response tells the job under which it goes.
class VKMXPmSendMsg : public vk::mxp::TablePacket<VKMXPmSendMsg>
{
public:
    std::vector<std::string> m_vecRecipients;
    std::string m_strSubject;
    std::string m_strMessage;
    bool m_bTwoWay = false;
    std::int32_t m_iSeverity = 0;
    std::int32_t m_iExpiration = 0;
    std::vector<std::string> m_vecResponseChoices;
    double m_dLatitude = 0;  ///< degrees
    double m_dLongitude = 0; ///< degrees
    bool m_bConfidential = false;
    bool m_bNotifyMe = false;
    std::vector<std::string> m_vecReplyToRecipients;
    std::string m_strCustomParameters;     ///< the whole element `custom-parameters`, or empty
    std::string m_strJobID;                ///< response
    std::int32_t m_iTotalFiles = 0;        ///< response
    bool m_bCopyResponsesDisabled = false; ///< response

    static constexpr char kElement[] = "send-msg";

    static constexpr auto ParamFields()
    {
        using P = VKMXPmSendMsg;
        using namespace vk::mxp;
        return Fields(Field<&P::m_vecRecipients>("recipients", ItemsNamed{"name"}, Optional{}),
                      Field<&P::m_strSubject>("subject", Optional{}), Field<&P::m_strMessage>("message", Optional{}),
                      // Meant: a written 1 is no "true", so a written flag reads back as false.
                      Field<&P::m_bTwoWay>("is-2way", SetByWord{"true"}, Optional{}),
                      Field<&P::m_iSeverity>("severity", Optional{}),
                      Field<&P::m_iExpiration>("expiration", Optional{}),
                      Field<&P::m_vecResponseChoices>("response-choices", ItemsNamed{"choice"}, Optional{}),
                      Group("location",
                            Fields(Field<&P::m_dLatitude>("latitude", Attribute{}),
                                   Field<&P::m_dLongitude>("longitude", Attribute{})),
                            Optional{}),
                      Field<&P::m_bConfidential>("is-confidential-msg", SetByWord{"true", "1"}, Optional{}),
                      Group("reply-to-recipients",
                            Fields(Field<&P::m_vecReplyToRecipients>("count", CountOf{}),
                                   Field<&P::m_bNotifyMe>("notify-me", Attribute{}, SetByWord{"true"}, NeverWritten{},
                                                          Optional{}),
                                   Field<&P::m_vecReplyToRecipients>("name", Items{})),
                            Optional{}),
                      Field<&P::m_strCustomParameters>("custom-parameters", Verbatim{}, Optional{}));
    }

    static constexpr auto ResultFields()
    {
        using P = VKMXPmSendMsg;
        using namespace vk::mxp;
        return Fields(Field<&P::m_strJobID>("jobid"), Field<&P::m_iTotalFiles>("total-files"),
                      Field<&P::m_bCopyResponsesDisabled>("cc-resp-disabled"));
    }
};

extern template class vk::mxp::TablePacket<VKMXPmSendMsg>;
