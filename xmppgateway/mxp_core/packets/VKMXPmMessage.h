#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "VKMXPmTablePacket.h"

/// A message for a device. Sent by the server; the device's response to it repeats the parameters.
class VKMXPmMessage : public vk::TablePacket<VKMXPmMessage>
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
            return vk::Fields(vk::Field<&FileAttachment::m_strID>("id", vk::Attribute{}),
                              vk::Field<&FileAttachment::m_strMimeType>("mime", vk::Attribute{}),
                              vk::Field<&FileAttachment::m_strSecureKey>("secure-key", vk::Attribute{}, vk::Optional{}),
                              vk::Field<&FileAttachment::m_strFileName>("file", vk::Contents{}));
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

    static constexpr auto ParamFields()
    {
        return vk::Fields(
            vk::Field<&VKMXPmMessage::m_strJobID>("job-id", vk::NotEmpty{}),
            vk::Field<&VKMXPmMessage::m_bTwoWay>("is-2way", vk::SetByOne{}),
            vk::Field<&VKMXPmMessage::m_strSender>("sender", vk::NotEmpty{}),
            vk::Field<&VKMXPmMessage::m_tDispatchTime>("dispatch-at"),
            vk::Field<&VKMXPmMessage::m_iSeverity>("severity"), vk::Field<&VKMXPmMessage::m_iExpiration>("expiration"),
            vk::Field<&VKMXPmMessage::m_bConfidential>("is-confidential", vk::SetByOne{}),
            vk::Field<&VKMXPmMessage::m_strSubject>("subject"),
            vk::Field<&VKMXPmMessage::m_strBody>("body", vk::NotEmpty{}),
            vk::Field<&VKMXPmMessage::m_vecResponseChoices>("response-choices", vk::ItemsNamed{"choice"}),
            vk::Field<&VKMXPmMessage::m_vecAttachments>("attachments", vk::ItemsNamed{"file"}),
            vk::Field<&VKMXPmMessage::m_strCustomParameters>("custom-parameters", vk::Verbatim{}, vk::Optional{}));
    }
};

extern template class vk::TablePacket<VKMXPmMessage>;
