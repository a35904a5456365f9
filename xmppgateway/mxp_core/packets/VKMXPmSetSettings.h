#pragma once

#include "VKMXPClientSettings.h"
#include "VKMXPmTablePacket.h"

/// A tone's element stands for its counter too: it is there when one of them is.
template <> struct vk::TableOf<VKMXPClientSettings::Alert>
{
    static constexpr auto Fields()
    {
        using R = VKMXPClientSettings::Alert;
        return vk::Fields(Field<&R::m_objCounter>("counter", Attribute{}), Field<&R::m_objTone>("tone", Contents{}));
    }
};

/// The server configures a client. Says only what it means to change.
class VKMXPmSetSettings : public vk::TablePacket<VKMXPmSetSettings>, public VKMXPClientSettings
{
public:
    static constexpr char kElement[] = "set-settings";

    static constexpr auto ParamFields()
    {
        using P = VKMXPClientSettings;
        using namespace vk;
        return Fields(
            Group("system-conf",
                  Fields(Group("master-passwd",
                               Fields(Flag<&P::m_objMasterPasswordEnabled>("enable", Attribute{}),
                                      Field<&P::m_objPassword>("password", NotEmpty{}),
                                      EnableFlag<&P::m_objForcePasswordChange>("force-password-change"),
                                      Group("prompt-when-comes-to-fg",
                                            Fields(Flag<&P::m_objPromptOnForeground>("enable", Attribute{}),
                                                   EnableFlag<&P::m_objPromptOnNewMessage>("prompt-on-new-msg")),
                                            OmitUnset{})),
                               OmitUnset{}),
                         EnableFlag<&P::m_objOpenMessagesAtLaunch>("open-messages-screen-at-launch")),
                  OmitUnset{}),
            Group("session-conf", Fields(EnableFlag<&P::m_objAutoLoginAtStart>("auto-login-at-start")), OmitUnset{}),
            Group("display-conf",
                  Fields(EnableFlag<&P::m_objShowMessageTime>("show-msg-time"),
                         EnableFlag<&P::m_objShowMessageJobID>("show-msg-job-id"),
                         EnableFlag<&P::m_objShowMessageProperties>("show-msg-prop"),
                         EnableFlag<&P::m_objShowMessageOneLine>("show-msg-1-line")),
                  OmitUnset{}),
            Group("messaging-conf",
                  Fields(EnableFlag<&P::m_objAutoDelete>("auto-delete"),
                         EnableFlag<&P::m_objSaveSentMessage>("save-send-msg"),
                         Field<&P::m_objCleanReceivedAfter>("clean-recv-msg-after"),
                         Field<&P::m_objCleanSentAfter>("clean-sent-msg-after"),
                         Field<&P::m_objCleanDraftsAfter>("clean-draft-msg-after")),
                  OmitUnset{}),
            Group("alert-conf",
                  Fields(Field<&P::m_objNormal>("tone-normal", OmitUnset{}),
                         Field<&P::m_objImportant>("tone-important", OmitUnset{}),
                         Field<&P::m_objWarning>("tone-warning", OmitUnset{}),
                         Field<&P::m_objCritical>("tone-critical", OmitUnset{}),
                         Field<&P::m_objEmergency>("tone-emergency", OmitUnset{})),
                  OmitUnset{}));
    }
};

extern template class vk::TablePacket<VKMXPmSetSettings>;
