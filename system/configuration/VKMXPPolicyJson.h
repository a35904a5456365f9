#pragma once

#include "VKMXPGeneralPolicy.h"

#include <json/json.h>

namespace vk {

/// What happens to a stored value when none is given.
enum class AbsentValue { Removed, Kept };

/// The JSON objects "settings" and "permissions" of a policy, which stand alike in the general policy and in a
/// receiver's own. Reading: a member of another kind than its value is not taken.
void ReadPolicyGroups(const Json::Value& policy, VKMXPPolicySettings& settings, VKMXPPolicyPermissions& permissions);

/// Writes what is present; members that are not known here stay. "new" becomes whether there is any value then.
void WritePolicyGroups(Json::Value& policy, const VKMXPPolicySettings& settings,
                       const VKMXPPolicyPermissions& permissions, AbsentValue absent);

} // namespace vk
