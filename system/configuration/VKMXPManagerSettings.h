#pragma once

#include "VKMXPGeneralPolicy.h"
#include "VKXMPPGatewaySettings.h"

namespace vk::settings {

// The public endpoints of the push services, as their operators name them.
inline constexpr const char* kApnsProductionHost = "gateway.push.apple.com";
inline constexpr const char* kApnsDevelopmentHost = "gateway.sandbox.push.apple.com";
inline constexpr std::int32_t kApnsPort = 2195;
inline constexpr const char* kGcmsUrl = "https://gcm-http.googleapis.com/gcm/send";
inline constexpr const char* kApns2ProductionUrl = "https://api.push.apple.com";
inline constexpr const char* kApns2DevelopmentUrl = "https://api.sandbox.push.apple.com";
inline constexpr const char* kFcmUrl = "https://fcm.googleapis.com";

} // namespace vk::settings

/// The settings of the MXP manager, "mxp_config.xml".
struct VKMXPManagerSettings
{
    bool m_bEnabled = false;
    std::string m_strHost;
    std::string m_strDomain = "mxp";
    std::int32_t m_iServerPort = 5222;
    std::int32_t m_iS2SPort = 10000; ///< stands in no file: reading one sets 5222, on purpose
    std::string m_strServerCertificate = vk::settings::kGatewayCertificate;
    std::string m_strServerPrivateKey = vk::settings::kGatewayPrivateKey;
    bool m_bEmergencyModeEnabled = false;
    long m_lMxpCarrier = 0;                            ///< id of the carrier that serves MXP
    std::int32_t m_iSocketTimeout = 30;                ///< seconds
    std::vector<std::string> m_vecAllowedMxpUsersFrom; ///< IP addresses
    std::int32_t m_iFileTransThreadPoolSize = 10;
    std::int32_t m_iFileTransTimeout = 1000;
    std::int32_t m_iRespActExecThreadPoolSize = 10;
    std::string m_strRecvFilesDirPath = vk::settings::kReceivedFilesDirectory;
    bool m_bAutoAuthEnabled = true;

    // The binary gateway. Type 2 of the certificate selects production.
    bool m_bApnsEnabled = false;
    std::string m_strApnsCertificate;
    std::int32_t m_iApnsCertificateType = 0;
    std::string m_strApnsPrivateKey;
    std::string m_strApnsPrivateKeyPasswd;
    std::string m_strApnsProductionHost = vk::settings::kApnsProductionHost;
    std::int32_t m_iApnsProductionPort = vk::settings::kApnsPort;
    std::string m_strApnsDevelopmentHost = vk::settings::kApnsDevelopmentHost;
    std::int32_t m_iApnsDevelopmentPort = vk::settings::kApnsPort;
    std::string m_strApnsCaBundle; ///< here and below: empty stands for VKConfiguration::GetCABundlePath()

    bool m_bGcmsEnabled = false;
    std::string m_strGcmsSenderId;
    std::string m_strGcmsServerKey;
    std::string m_strGcmsUrl = vk::settings::kGcmsUrl;
    std::string m_strGcmsCaBundle;

    // The HTTP/2 provider API: a signing key with its ids, or a client certificate.
    bool m_bApns2Enabled = false;
    bool m_bApns2Production = true;
    std::string m_strApns2ProductionUrl = vk::settings::kApns2ProductionUrl;
    std::string m_strApns2DevelopmentUrl = vk::settings::kApns2DevelopmentUrl;
    std::string m_strApns2Topic;      ///< the app's bundle id
    std::string m_strApns2SigningKey; ///< path of the ".p8" file
    std::string m_strApns2KeyId;
    std::string m_strApns2TeamId;
    std::string m_strApns2Certificate;
    std::string m_strApns2PrivateKey;
    std::string m_strApns2PrivateKeyPasswd;
    std::int32_t m_iApns2Priority = 10;
    std::string m_strApns2CollapseId = "waiting-messages";
    std::string m_strApns2CaBundle;

    // The HTTP v1 API.
    bool m_bFcmEnabled = false;
    std::string m_strFcmServiceAccount; ///< path of the JSON file of the account
    std::string m_strFcmUrl = vk::settings::kFcmUrl;
    std::string m_strFcmProjectId; ///< empty: as the account's file says
    std::string m_strFcmTokenUrl;  ///< empty: as the account's file says
    std::string m_strFcmCaBundle;

    // The forward proxy of all push services over HTTP; an empty host leaves it to the global settings.
    std::string m_strPushProxyHost; ///< "host:port"
    std::string m_strPushProxyUser;
    std::string m_strPushProxyPasswd;

    bool m_bS2SEnabled = false;
    std::vector<VKS2SProfile> m_vecS2SProfiles;
    std::string m_strGeneralPolicy; ///< the JSON text that was read; the two records below are what is written
    VKMXPPolicySettings m_objPolicySettings;
    VKMXPPolicyPermissions m_objPolicyPermissions;
};

namespace vk::settings {

template <auto Member, class... Marks> constexpr auto Apns(const char* name, Marks... marks)
{
    return Field<Member>(name, In{"push_notification"}, OptionalGroup{}, marks...);
}

template <auto Member, class... Marks> constexpr auto Gcms(const char* name, Marks... marks)
{
    return Field<Member>(name, In{"gcms_notification"}, OptionalGroup{}, marks...);
}

template <auto Member, class... Marks> constexpr auto Apns2(const char* name, Marks... marks)
{
    return Field<Member>(name, In{"apns2_notification"}, Extension{}, marks...);
}

template <auto Member, class... Marks> constexpr auto Fcm(const char* name, Marks... marks)
{
    return Field<Member>(name, In{"fcm_notification"}, Extension{}, marks...);
}

inline constexpr auto kMXPManagerFields = Fields(
    Field<&VKMXPManagerSettings::m_bEnabled>("", InAttribute{"enable"}),
    Field<&VKMXPManagerSettings::m_strHost>("host"), Field<&VKMXPManagerSettings::m_strDomain>("domain"),
    Field<&VKMXPManagerSettings::m_iServerPort>("server_port"),
    Field<&VKMXPManagerSettings::m_strServerCertificate>("server_certificate"),
    Field<&VKMXPManagerSettings::m_strServerPrivateKey>("server_private_key"),
    Field<&VKMXPManagerSettings::m_bEmergencyModeEnabled>("emergency_mode_enabled"),
    Field<&VKMXPManagerSettings::m_lMxpCarrier>("mxp_carrier"),
    Field<&VKMXPManagerSettings::m_iSocketTimeout>("socket_timeout", Optional{}),
    Field<&VKMXPManagerSettings::m_vecAllowedMxpUsersFrom>("allowed_mxp_users_from", Items{"ip_address"}),
    Field<&VKMXPManagerSettings::m_iFileTransThreadPoolSize>("file_trans_thread_pool_size", In{"adv_settings"}),
    Field<&VKMXPManagerSettings::m_iFileTransTimeout>("file_trans_timeout", In{"adv_settings"}),
    Field<&VKMXPManagerSettings::m_iRespActExecThreadPoolSize>("resp_act_exec_thread_pool_size", In{"adv_settings"}),
    Field<&VKMXPManagerSettings::m_strRecvFilesDirPath>("recv_files_dir_path", In{"adv_settings"}),
    Field<&VKMXPManagerSettings::m_bAutoAuthEnabled>("auto_auth_enabled", In{"adv_settings"}, Optional{}),

    Apns<&VKMXPManagerSettings::m_bApnsEnabled>("apns_enabled"),
    Apns<&VKMXPManagerSettings::m_strApnsCertificate>("ssl_certificate"),
    Apns<&VKMXPManagerSettings::m_iApnsCertificateType>("certificate_type"),
    Apns<&VKMXPManagerSettings::m_strApnsPrivateKey>("ssl_certificate_private_key"),
    Apns<&VKMXPManagerSettings::m_strApnsPrivateKeyPasswd>("ssl_certificate_private_key_passwd", Secret{}),
    Apns<&VKMXPManagerSettings::m_strApnsProductionHost>("production_host", Extension{}),
    Apns<&VKMXPManagerSettings::m_iApnsProductionPort>("production_port", Extension{}),
    Apns<&VKMXPManagerSettings::m_strApnsDevelopmentHost>("development_host", Extension{}),
    Apns<&VKMXPManagerSettings::m_iApnsDevelopmentPort>("development_port", Extension{}),
    Apns<&VKMXPManagerSettings::m_strApnsCaBundle>("ca_bundle", Extension{}),

    Gcms<&VKMXPManagerSettings::m_bGcmsEnabled>("gcms_enabled"),
    Gcms<&VKMXPManagerSettings::m_strGcmsSenderId>("gcms_sender_id"),
    Gcms<&VKMXPManagerSettings::m_strGcmsServerKey>("gcms_server_key", Secret{}),
    Gcms<&VKMXPManagerSettings::m_strGcmsUrl>("url", Extension{}),
    Gcms<&VKMXPManagerSettings::m_strGcmsCaBundle>("ca_bundle", Extension{}),

    Apns2<&VKMXPManagerSettings::m_bApns2Enabled>("apns2_enabled"),
    Apns2<&VKMXPManagerSettings::m_bApns2Production>("production"),
    Apns2<&VKMXPManagerSettings::m_strApns2ProductionUrl>("production_url"),
    Apns2<&VKMXPManagerSettings::m_strApns2DevelopmentUrl>("development_url"),
    Apns2<&VKMXPManagerSettings::m_strApns2Topic>("topic"),
    Apns2<&VKMXPManagerSettings::m_strApns2SigningKey>("signing_key"),
    Apns2<&VKMXPManagerSettings::m_strApns2KeyId>("key_id"), Apns2<&VKMXPManagerSettings::m_strApns2TeamId>("team_id"),
    Apns2<&VKMXPManagerSettings::m_strApns2Certificate>("ssl_certificate"),
    Apns2<&VKMXPManagerSettings::m_strApns2PrivateKey>("ssl_certificate_private_key"),
    Apns2<&VKMXPManagerSettings::m_strApns2PrivateKeyPasswd>("ssl_certificate_private_key_passwd", Secret{}),
    Apns2<&VKMXPManagerSettings::m_iApns2Priority>("priority"),
    Apns2<&VKMXPManagerSettings::m_strApns2CollapseId>("collapse_id"),
    Apns2<&VKMXPManagerSettings::m_strApns2CaBundle>("ca_bundle"),

    Fcm<&VKMXPManagerSettings::m_bFcmEnabled>("fcm_enabled"),
    Fcm<&VKMXPManagerSettings::m_strFcmServiceAccount>("service_account"),
    Fcm<&VKMXPManagerSettings::m_strFcmUrl>("url"), Fcm<&VKMXPManagerSettings::m_strFcmProjectId>("project_id"),
    Fcm<&VKMXPManagerSettings::m_strFcmTokenUrl>("token_url"),
    Fcm<&VKMXPManagerSettings::m_strFcmCaBundle>("ca_bundle"),

    Field<&VKMXPManagerSettings::m_strPushProxyHost>("host", In{"push_proxy"}, Extension{}),
    Field<&VKMXPManagerSettings::m_strPushProxyUser>("user", In{"push_proxy"}, Extension{}),
    Field<&VKMXPManagerSettings::m_strPushProxyPasswd>("passwd", In{"push_proxy"}, Extension{}, Secret{}),

    Field<&VKMXPManagerSettings::m_bS2SEnabled>("s2s_enabled"),
    Field<&VKMXPManagerSettings::m_vecS2SProfiles>("s2s_profiles", Items{"profile"}),
    Field<&VKMXPManagerSettings::m_strGeneralPolicy>("mxp_general_policy", Optional{}));

} // namespace vk::settings
