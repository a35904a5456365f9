#pragma once

#include "VKS2SProfile.h"

#include <vector>

namespace vk::settings {

inline constexpr const char* kGatewayCertificate = "/usr/local/vardock/config/vk_xmpp_gateway_server.crt";
inline constexpr const char* kGatewayPrivateKey = "/usr/local/vardock/config/vk_xmpp_gateway_server.key";
inline constexpr const char* kReceivedFilesDirectory = "/usr/local/vardock/attachments/";

} // namespace vk::settings

/// The settings of the XMPP gateway, "xmppgateway_config.xml".
struct VKXMPPGatewaySettings
{
    bool m_bEnabled = false;
    std::string m_strHost;
    std::string m_strDomain = "vardock";
    std::int32_t m_iServerPort = 5222;
    std::string m_strServerCertificate = vk::settings::kGatewayCertificate;
    std::string m_strServerPrivateKey = vk::settings::kGatewayPrivateKey;
    bool m_bRosterSupport = false;
    bool m_bGreetingsMsg = false;
    std::string m_strGreetingsMsg;
    bool m_bSuffixMessage = false;
    std::string m_strSuffixMessage;
    bool m_bSuffixResponse = false;
    std::string m_strSuffixResponse;
    std::int32_t m_iFileTransThreadPoolSize = 10;
    std::int32_t m_iFileTransTimeout = 1000;
    std::int32_t m_iRespActExecThreadPoolSize = 10;
    std::string m_strRecvFilesDirPath = vk::settings::kReceivedFilesDirectory;
    bool m_bS2SEnabled = false;
    std::vector<VKS2SProfile> m_vecS2SProfiles;
};

namespace vk::settings {

inline constexpr auto kXMPPGatewayFields = Fields(
    Field<&VKXMPPGatewaySettings::m_bEnabled>("", InAttribute{"enable"}),
    Field<&VKXMPPGatewaySettings::m_strHost>("host"), Field<&VKXMPPGatewaySettings::m_strDomain>("domain"),
    Field<&VKXMPPGatewaySettings::m_iServerPort>("server_port"),
    Field<&VKXMPPGatewaySettings::m_strServerCertificate>("server_certificate"),
    Field<&VKXMPPGatewaySettings::m_strServerPrivateKey>("server_private_key"),
    Field<&VKXMPPGatewaySettings::m_bRosterSupport>("roster-support", InAttribute{"enable"}),
    Field<&VKXMPPGatewaySettings::m_bGreetingsMsg>("greetings-msg", In{"templates"}, InAttribute{"enable"}),
    Field<&VKXMPPGatewaySettings::m_strGreetingsMsg>("greetings-msg", In{"templates"}),
    Field<&VKXMPPGatewaySettings::m_bSuffixMessage>("suffix-message", In{"templates"}, InAttribute{"enable"}),
    Field<&VKXMPPGatewaySettings::m_strSuffixMessage>("suffix-message", In{"templates"}),
    Field<&VKXMPPGatewaySettings::m_bSuffixResponse>("suffix-response", In{"templates"}, InAttribute{"enable"}),
    Field<&VKXMPPGatewaySettings::m_strSuffixResponse>("suffix-response", In{"templates"}),
    Field<&VKXMPPGatewaySettings::m_iFileTransThreadPoolSize>("file_trans_thread_pool_size", In{"adv_settings"}),
    Field<&VKXMPPGatewaySettings::m_iFileTransTimeout>("file_trans_timeout", In{"adv_settings"}),
    Field<&VKXMPPGatewaySettings::m_iRespActExecThreadPoolSize>("resp_act_exec_thread_pool_size", In{"adv_settings"}),
    Field<&VKXMPPGatewaySettings::m_strRecvFilesDirPath>("recv_files_dir_path", In{"adv_settings"}),
    Field<&VKXMPPGatewaySettings::m_bS2SEnabled>("s2s_enabled"),
    Field<&VKXMPPGatewaySettings::m_vecS2SProfiles>("s2s_profiles", Items{"profile"}));

} // namespace vk::settings
