#pragma once

#include "Options.h"

namespace vk {

/// "push test": sends one notification to a device and says what its push service answered. Takes what the service
/// takes, up to ten seconds and more for the legacy ones.
int TestPush(const Arguments& arguments);

} // namespace vk
