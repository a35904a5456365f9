#include "VKBALUtility.h"

#include "VKFieldValidators.h"
#include "VKstringTrim.h"

bool VKBALUtility::IsValidName(const std::string& name) { return VKNameValidatorEx().validate(name); }
bool VKBALUtility::IsValidDeviceName(const std::string& name) { return VKDeviceNameValidator().validate(name); }
bool VKBALUtility::IsBlank(const std::string& text) { return vk::Trimmed(text).empty(); }
