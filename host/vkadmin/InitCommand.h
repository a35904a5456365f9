#pragma once

#include "Options.h"

namespace vk {

/// "vkadmin init": makes a new installation root. Throws InputError when there is one already, or when a directory or
/// file cannot be made.
int RunInit(const Arguments& arguments);

} // namespace vk
