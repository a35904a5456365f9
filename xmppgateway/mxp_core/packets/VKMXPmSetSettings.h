#pragma once

#include "VKMXPClientSettings.h"
#include "VKMXPmTablePacket.h"

/// A tone's element stands for its counter too: it is there when one of them is.
template <> struct vk::mxp::TableOf<VKMXPClientSettings::Alert>
{
    static constexpr auto Fields()
    {
        using R = VKMXPClientSettings::Alert;
        return vk::Fields(Field<&R::m_optCounter>("counter", Attribute{}), Field<&R::m_optTone>("tone", Contents{}));
    }
};

/// The server configures a client. Says only what it means to change.
class VKMXPmSetSettings : public vk::mxp::TablePacket<VKMXPmSetSettings>, public VKMXPClientSettings
{
public:
    static constexpr char kElement[] = "set-settings";
    static constexpr bool kServerSends = true;

    static constexpr auto ParamFields()
    {
        using P = VKMXPClientSettings;
        using namespace vk::mxp;
        return Fields(
            Group("system-conf",
                  Fields(Group("master-passwd",
                               Fields(Flag<&P::m_optMasterPasswordEnabled>("enable", Attribute{}),
                                      Field<&P::m_optPassword>("password", NotEmpty{}),
                                      EnableFlag<&P::m_optForcePasswordChange>("force-password-change"),
                                      Group("prompt-when-comes-to-fg",
                                            Fields(Flag<&P::m_optPromptOnForeground>("enable", Attribute{}),
                                                   EnableFlag<&P::m_optPromptOnNewMessage>("prompt-on-new-msg")),
                                            OmitUnset{})),
                               OmitUnset{}),
                         EnableFlag<&P::m_optOpenMessagesAtLaunch>("open-messages-screen-at-launch")),
                  OmitUnset{}),
            Group("session-conf", Fields(EnableFlag<&P::m_optAutoLoginAtStart>("auto-login-at-start")), OmitUnset{}),
            Group("display-conf",
                  Fields(EnableFlag<&P::m_optShowMessageTime>("show-msg-time"),
                         EnableFlag<&P::m_optShowMessageJobID>("show-msg-job-id"),
                         EnableFlag<&P::m_optShowMessageProperties>("show-msg-prop"),
                         EnableFlag<&P::m_optShowMessageOneLine>("show-msg-1-line")),
                  OmitUnset{}),
            Group("messaging-conf",
                  Fields(EnableFlag<&P::m_optAutoDelete>("auto-delete"),
                         EnableFlag<&P::m_optSaveSentMessage>("save-send-msg"),
                         Field<&P::m_optCleanReceivedAfter>("clean-recv-msg-after"),
                         Field<&P::m_optCleanSentAfter>("clean-sent-msg-after"),
                         Field<&P::m_optCleanDraftsAfter>("clean-draft-msg-after")),
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

extern template class vk::mxp::TablePacket<VKMXPmSetSettings>;
