#pragma once

#include "Options.h"

namespace vk {

/// The verbs on packets of the protocol, for those who write clients. They need no installation. They throw UsageError
/// and InputError for a wrong call.
int ParsePacket(const Arguments& arguments);
int MakePacket(const Arguments& arguments);

} // namespace vk
