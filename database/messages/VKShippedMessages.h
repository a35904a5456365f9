#pragma once

#include <string>

namespace vk {

/// The constants file that this library was built with, whole. What it says is what an operator reads when an
/// installation has no catalogue, and what a new installation's catalogue is made from.
extern const char* const kShippedMessageConstants;

/// The English text of a message number; empty when there is none.
std::string ShippedMessage(unsigned long id);

} // namespace vk
