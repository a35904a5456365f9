#pragma once

#include "Options.h"

namespace vk {

// "attribute ...": what operators define for receivers. A receiver's values are set with "receiver attributes".

int AddAttribute(const Arguments& arguments);
int ModifyAttribute(const Arguments& arguments);
/// Refused while a receiver has a value of it.
int DeleteAttribute(const Arguments& arguments);
int ListAttributes(const Arguments& arguments);

} // namespace vk
