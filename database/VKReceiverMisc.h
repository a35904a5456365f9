#pragma once

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

/// Which part of the JSON text in misc_settings is meant.
enum VKMiscSettings_Rece : int { VKMiscSettingsMxp = 2 };

/// Gives the receiver an empty block of MXP fields unless it has one.
VK_MXP_FIELDS* NeedMxpFields(VK_RECEIVER* receiver);

/// Writes the given values of the part into misc_settings; all else that is stored there stays. Throws VKDBexception
/// when misc_settings holds no JSON object.
void ConvertMiscSettingsToJSON(VK_RECEIVER* receiver, VKMiscSettings_Rece part);

/// Reads the MXP fields from misc_settings. False, with none set, when there are none; throws as above.
bool ConvertJSONToMXPFieldsData(VK_RECEIVER* receiver);
