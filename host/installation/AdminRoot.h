#pragma once

#include "Options.h"

#include <string>

class VKDatabase;

namespace vk {

/// The installation root that "--root" names, as the library's configuration. One for the process; it must be there.
/// Throws InputError that names the directory or file at fault.
std::string UseRoot(const Arguments& arguments);

/// The database of the root. Throws std::runtime_error with the database's own words when it cannot be opened.
VKDatabase& UseDatabase(const Arguments& arguments);

} // namespace vk
