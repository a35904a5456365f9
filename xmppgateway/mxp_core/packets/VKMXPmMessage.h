#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "VKMXPmTablePacket.h"

/// A message for a device. Sent by the server; the device's response to it repeats the parameters.
class VKMXPmMessage : public vk::mxp::TablePacket<VKMXPmMessage>
{
public:
    struct FileAttachment
    {
        std::string m_strID;
        std::string m_strMimeType;
        std::string m_strFileName;
        std::string m_strSecureKey;

        /// The key is always written; a reader takes an attachment without one.
        static constexpr auto Fields()
        {
            using R = FileAttachment;
            using namespace vk::mxp;
            return vk::Fields(Field<&R::m_strID>("id", Attribute{}), Field<&R::m_strMimeType>("mime", Attribute{}),
                              Field<&R::m_strSecureKey>("secure-key", Attribute{}, Optional{}),
                              Field<&R::m_strFileName>("file", Contents{}));
        }
    };

    std::string m_strJobID;
    bool m_bTwoWay = false;
    std::string m_strSender;
    std::int32_t m_tDispatchTime = 0; ///< seconds since the epoch
    std::int32_t m_iSeverity = 0;
    std::int32_t m_iExpiration = 0;
    bool m_bConfidential = false;
    std::string m_strSubject;
    std::string m_strBody;
    std::vector<std::string> m_vecResponseChoices;
    std::vector<FileAttachment> m_vecAttachments;
    std::string m_strCustomParameters; ///< the whole element `custom-parameters`, or empty

    static constexpr char kElement[] = "message";
    static constexpr bool kServerSends = true;

    static constexpr auto ParamFields()
    {
        using P = VKMXPmMessage;
        using namespace vk::mxp;
        return Fields(Field<&P::m_strJobID>("job-id", NotEmpty{}), Field<&P::m_bTwoWay>("is-2way", SetByOne{}),
                      Field<&P::m_strSender>("sender", NotEmpty{}), Field<&P::m_tDispatchTime>("dispatch-at"),
                      Field<&P::m_iSeverity>("severity"), Field<&P::m_iExpiration>("expiration"),
                      Field<&P::m_bConfidential>("is-confidential", SetByOne{}), Field<&P::m_strSubject>("subject"),
                      Field<&P::m_strBody>("body", NotEmpty{}),
                      Field<&P::m_vecResponseChoices>("response-choices", ItemsNamed{"choice"}),
                      Field<&P::m_vecAttachments>("attachments", ItemsNamed{"file"}),
                      Field<&P::m_strCustomParameters>("custom-parameters", Verbatim{}, Optional{}));
    }
};

extern template class vk::mxp::TablePacket<VKMXPmMessage>;
