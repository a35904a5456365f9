#include "MessageFileReader.h"

#include "Options.h"
#include "Utf8.h"

#include <cstdint>
#include <cstdlib>
#include <string>

/// A message file is read or refused in one line; whatever is read is text that can go out again.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    vk::HostMessageFile file;
    try {
        vk::ParseMessage({reinterpret_cast<const char*>(data), size}, file);
        if (file.strJobID.empty() || vk::FindInvalidUtf8(file.strBody) != std::string_view::npos)
            std::abort();
    } catch (const vk::InputError& error) {
        const std::string reason = error.what();
        if (reason.empty() || reason.find('\n') != std::string::npos)
            std::abort();
    }
    return 0;
}
