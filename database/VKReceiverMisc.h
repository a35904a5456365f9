#pragma once

#include "VKMXPGeneralPolicy.h"

struct VK_RECEIVER;

/// What a mobile client needs to be reached over MXP. Each value has a flag that says that it is given: what is not
/// given keeps its stored value. Plain memory (malloc), owned by the receiver that points to it.
struct VK_MXP_FIELDS
{
    bool mxp_password_set = false;
    bool bk_mxp_password_set = false;
    bool device_id_set = false;
    bool device_push_service_set = false;
    char mxp_password[256] = {};
    char bk_mxp_password[256] = {};
    char device_id[256] = {};
    char device_push_service[256] = {};
};

/// The receiver's own settings and permissions of its mobile client. A value that is not present keeps its stored one.
/// Made with new, owned by the receiver that points to it.
struct VK_ADV_MESSAGING
{
    VKMXPPolicySettings settings;
    VKMXPPolicyPermissions permissions;
};

/// Which part of the JSON text in misc_settings is meant.
enum VKMiscSettings_Rece : int { VKMiscSettingsAdvMsgng = 1, VKMiscSettingsMxp = 2, VKMiscSettingsBoth = 3 };

/// Gives the receiver an empty block of MXP fields, or of advanced messaging data, unless it has one.
VK_MXP_FIELDS* NeedMxpFields(VK_RECEIVER* receiver);
VK_ADV_MESSAGING* NeedAdvMessaging(VK_RECEIVER* receiver);

/// Writes the given values of the part into misc_settings; all else that is stored there stays. Throws VKDBexception
/// when misc_settings cannot be read.
void ConvertMiscSettingsToJSON(VK_RECEIVER* receiver, VKMiscSettings_Rece part);

/// Read a part, or both, from misc_settings. False, with none set, when there are none; throw as above.
bool ConvertJSONToMiscSettingsData(VK_RECEIVER* receiver);
bool ConvertJSONToMXPFieldsData(VK_RECEIVER* receiver);
bool ConvertJSONToAdvMessagingData(VK_RECEIVER* receiver);
