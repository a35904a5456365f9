#pragma once

#include "Options.h"

namespace vk {

/// The noun "settings": what stands in "mxp_config.xml" (mxp) and "xmppgateway_config.xml" (gateway). Setting changes
/// the file in place, or makes it with the defaults.
int ShowMxpSettings(const Arguments& arguments);
int SetMxpSetting(const Arguments& arguments);
int ShowGatewaySettings(const Arguments& arguments);
int SetGatewaySetting(const Arguments& arguments);

} // namespace vk
