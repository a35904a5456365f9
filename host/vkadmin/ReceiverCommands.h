#pragma once

#include "Options.h"

namespace vk {

/// "receiver status": shows whether a receiver is available and since when it was not, or changes it.
int ReceiverStatus(const Arguments& arguments);

/// "receiver guest-departments": shows in which departments a receiver is seen beside its own, after adding and removing
/// what is asked for.
int ReceiverGuestDepartments(const Arguments& arguments);

/// "receiver attributes": shows a receiver's values, after setting and removing what is asked for, all at once.
int ReceiverAttributes(const Arguments& arguments);

} // namespace vk
