#pragma once

#include <string>

namespace vk {

/// All bytes of a file or of standard input ("-"). Throws InputError that names it.
std::string ReadBytes(const std::string& name);

/// The same without the white space around it.
std::string ReadInput(const std::string& name);

/// The first line of such a file, as a password stands in one. Throws InputError also when it is empty.
std::string ReadPassword(const std::string& name);

} // namespace vk
