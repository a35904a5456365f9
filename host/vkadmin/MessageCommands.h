#pragma once

#include "Options.h"

#include <string>

namespace vk {

/// The noun "messages": the catalogue of the texts that people read when a record is refused.
/// Makes it anew from a constants file.
int BuildMessages(const Arguments& arguments);

/// A catalogue for a new configuration directory, and beside it the constants file that it is made from.
/// Throws InputError that names the file at fault.
void MakeFirstCatalogue(const std::string& configDirectory);

} // namespace vk
