#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

namespace vk {

/// Gives each line of a text file, without its line end and cut at `limit` bytes, to `take`. Holds a shared lock
/// meanwhile, waiting for it. False when the file cannot be read to its end.
bool ReadConfigurationLines(const std::string& path, std::size_t limit,
                            const std::function<void(std::string_view)>& take);

/// Reads a whole text file under a shared lock; false when it cannot be read.
bool ReadConfigurationText(const std::string& path, std::string& text);

/// Reads up to `size` bytes under a shared lock; how many there were, -1 when the file cannot be
/// read.
long ReadConfigurationBytes(const std::string& path, void* bytes, std::size_t size);

/// Writes the whole file under an exclusive lock, waiting for it. Readers meet the old content or the new one; when the
/// disk has no room the old one stays. False on failure.
bool WriteConfigurationFile(const std::string& path, std::string_view content);

} // namespace vk
