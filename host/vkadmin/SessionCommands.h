#pragma once

#include "Options.h"

namespace vk {

/// The nouns' verbs on the store of logged-in devices: what a gateway writes when devices come and go. They throw
/// UsageError and InputError for a wrong call, and what the store throws.
int AddSession(const Arguments& arguments);
int ListSessions(const Arguments& arguments);
int RemoveSession(const Arguments& arguments);

} // namespace vk
