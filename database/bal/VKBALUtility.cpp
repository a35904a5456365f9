#include "VKBALUtility.h"

#include <algorithm>

#include "VKFieldValidators.h"
#include "VKascii.h"
#include "VKstringTrim.h"

bool VKBALUtility::IsValidName(const std::string& name) { return VKNameValidatorEx().validate(name); }
bool VKBALUtility::IsValidDeviceName(const std::string& name) { return VKDeviceNameValidator().validate(name); }
bool VKBALUtility::IsBlank(const std::string& text) { return vk::Trimmed(text).empty(); }

bool VKBALUtility::IsValidUserName(const std::string& name)
{
    constexpr std::string_view refused = "\"':\\/%<>#*?|;,";
    return std::all_of(name.begin(), name.end(), [&](char c) {
        return vk::IsPrint(c) && refused.find(c) == std::string_view::npos;
    });
}
