#pragma once

#include "VKGatewaySettingsMarks.h"

#include <cstdint>
#include <string>

/// One server-to-server profile.
struct VKS2SProfile
{
    bool m_bEnabled = false;
    std::string m_strName;
    std::string m_strDescription;
    std::string m_strServerAddress;
    std::int32_t m_iServerPort = 0;
    std::int32_t m_iAuthMechanism = 0; ///< 1 SASL external, any other dial back
    std::string m_strCertificate;
    std::string m_strAuthServerAddress;
};

namespace vk::settings {

inline constexpr auto kS2SProfileFields = Fields(
    Field<&VKS2SProfile::m_bEnabled>("", InAttribute{"enable"}), Field<&VKS2SProfile::m_strName>("name"),
    Field<&VKS2SProfile::m_strDescription>("description"), Field<&VKS2SProfile::m_strServerAddress>("server_address"),
    Field<&VKS2SProfile::m_iServerPort>("server_port"),
    Field<&VKS2SProfile::m_iAuthMechanism>("auth_mechanism", AuthMechanism{}),
    Field<&VKS2SProfile::m_strCertificate>("certificate"),
    Field<&VKS2SProfile::m_strAuthServerAddress>("auth_server_address"));

} // namespace vk::settings
