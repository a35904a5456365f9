#pragma once

#include "VKhttpConnection.h"

#include <string>
#include <vector>

class VKLogInterface;
struct VKMXPManagerSettings;

namespace vk {

/// The settings of the MXP manager, read afresh; null when there are none, and the log says why.
const VKMXPManagerSettings* PushSettings(VKLogInterface* logger);

/// The CA bundle that a service's settings name, or that of the installation.
std::string PushCaBundle(const std::string& configured);
/// The same for a service whose certificate is checked: without such a file the system's bundle serves (empty).
std::string PushCaBundleOrSystem(const std::string& configured);

/// The forward proxy of the manager's settings, or else that of the global settings; all empty when there is none.
struct PushProxy
{
    std::string host; ///< "host:port"
    std::string user;
    std::string password; ///< never logged
};
PushProxy PushProxyOf(const VKMXPManagerSettings& settings);

/// The text with each of the secrets in it replaced: what a service answers may repeat what it was sent.
std::string Redacted(std::string text, const std::vector<std::string>& secrets);

} // namespace vk
