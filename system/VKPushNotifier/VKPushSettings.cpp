#include "VKPushSettings.h"

#include "VKConfiguration.h"
#include "VKLog.h"
#include "VKioFile.h"

#include <cstring>

namespace vk {

namespace {

/// A field of a record that need not be zero-terminated.
template <std::size_t N> std::string FieldText(const char (&field)[N]) { return std::string(field, strnlen(field, N)); }

} // namespace

const VKMXPManagerSettings* PushSettings(VKLogInterface* logger)
{
    VKConfiguration* const configuration = VKConfiguration::getVKConfiguration();
    const VKMXPManagerSettings* const settings = configuration ? configuration->getMXPManagerSettings(true) : nullptr;
    if (!settings)
        VK_LOG_ERROR(logger, "The settings of the MXP manager cannot be read. %s",
                     configuration ? configuration->getGatewaySettingsError().c_str() : "");
    return settings;
}

std::string PushCaBundle(const std::string& configured)
{
    return configured.empty() ? VKConfiguration::getVKConfiguration()->GetCABundlePath() : configured;
}

std::string PushCaBundleOrSystem(const std::string& configured)
{
    const std::string bundle = PushCaBundle(configured);
    return !configured.empty() || VKioFile::IsExisting(bundle) ? bundle : std::string();
}

PushProxy PushProxyOf(const VKMXPManagerSettings& settings)
{
    if (!settings.m_strPushProxyHost.empty())
        return {settings.m_strPushProxyHost, settings.m_strPushProxyUser, settings.m_strPushProxyPasswd};
    const VK_GLOBAL_SETTINGS* const global = VKConfiguration::getVKConfiguration()->getGlobalSettings(false);
    if (!global)
        return {};
    return {FieldText(global->proxy_host), FieldText(global->proxy_user), FieldText(global->proxy_password)};
}

std::string Redacted(std::string text, const std::vector<std::string>& secrets)
{
    for (const std::string& secret : secrets)
        for (std::size_t at = secret.empty() ? std::string::npos : text.find(secret); at != std::string::npos;
             at = text.find(secret, at))
            text.replace(at, secret.size(), "***");
    return text;
}

} // namespace vk
