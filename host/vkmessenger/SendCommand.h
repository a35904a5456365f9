#pragma once

#include "Options.h"

namespace vk {

/// "vkmessenger send": hands each message file to the driver and shows what becomes of it.
/// \return kExitOk, or kExitFailed when a message failed. Throws InputError, and std::runtime_error when the driver
/// cannot be loaded or configured.
int RunSend(const Arguments& arguments);

} // namespace vk
