#pragma once

#include "Options.h"

namespace vk {

/// "vkmxpdevice": logs one device in and lets it answer. Throws UsageError for a wrong call and std::runtime_error when
/// the login fails or the connection is lost.
int RunDevice(const Arguments& arguments);

} // namespace vk
