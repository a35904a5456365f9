#pragma once

#include <string>
#include <string_view>
#include <strings.h>

#include "VKMXPmNumber.h"
#include "VKsysCodec.h"

/// \file
/// How a value of each type stands on the wire. A packet's field takes the form of its type; a mark on the field says
/// where it departs from that.

namespace vk {

inline void AppendValue(std::string& out, std::string_view text) { VKsysCodec::AppendXmlData(out, text); }

inline void AppendValue(std::string& out, bool flag) { out += flag ? '1' : '0'; }

inline void ReadValue(std::string_view text, std::string& value) { value.assign(text); }

/// False for an empty text and for "false", "0" and "no" in any case.
inline void ReadValue(std::string_view text, bool& value)
{
    value = !text.empty();
    for (const std::string_view no : {"false", "0", "no"})
        if (text.size() == no.size() && strncasecmp(text.data(), no.data(), no.size()) == 0)
            value = false;
}

} // namespace vk
