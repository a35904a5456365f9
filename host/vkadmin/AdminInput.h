#pragma once

#include <string>

namespace vk {

/// A file or standard input ("-"), without the white space around it. Throws InputError that names it.
std::string ReadInput(const std::string& name);

/// The first line of such a file, as a password stands in one. Throws InputError also when it is empty.
std::string ReadPassword(const std::string& name);

} // namespace vk
