#pragma once

#include "Options.h"

class VKDBiReceiver;

namespace vk {

/// The options of "receiver list", as the store's filter. Throws UsageError or InputError.
void SetReceiverFilter(VKDBiReceiver& store, const Arguments& arguments);

/// The two sides of NAME=VALUE. Throws UsageError that names the option.
std::pair<std::string, std::string> SplitAssignment(const std::string& text, const std::string& option);

/// An attribute's id by its name, letters of either case. Throws UsageError that names the option and the attributes.
unsigned long AttributeId(VKDBiReceiver& store, const std::string& name, const std::string& option);

} // namespace vk
