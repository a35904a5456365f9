#pragma once

#include "Options.h"

namespace vk {

/// The noun "gateway-user": the accounts that may log in to the XMPP gateway. Passwords come from files and are never
/// shown.
int ListGatewayUsers(const Arguments& arguments);
int ShowGatewayUser(const Arguments& arguments);
int AddGatewayUser(const Arguments& arguments);
/// Changes what is given and leaves the rest.
int ModifyGatewayUser(const Arguments& arguments);
int DeleteGatewayUser(const Arguments& arguments);
int EnableGatewayUser(const Arguments& arguments);
int DisableGatewayUser(const Arguments& arguments);

} // namespace vk
