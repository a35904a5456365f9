#pragma once

#include "VKProtocolDriverInterface.h"

/// \file
/// The two functions that a host resolves in the driver's library, and all that it may resolve.

extern "C" {

/// The one driver of the process, made on the first call; the same pointer after that until it is released.
__attribute__((visibility("default"))) VKProtocolDriverInterface* GetDriverInstance();

/// Deletes the driver when this is it; null and any other pointer are passed over.
__attribute__((visibility("default"))) void ReleaseDriverInstance(VKProtocolDriverInterface* driver);
}

namespace vk {

using GetDriverInstanceFunction = decltype(&::GetDriverInstance);
using ReleaseDriverInstanceFunction = decltype(&::ReleaseDriverInstance);

inline constexpr char kGetDriverInstanceName[] = "GetDriverInstance";
inline constexpr char kReleaseDriverInstanceName[] = "ReleaseDriverInstance";

} // namespace vk
