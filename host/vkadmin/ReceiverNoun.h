#pragma once

#include "AdminInput.h"
#include "EntityNoun.h"
#include "ReceiverFilter.h"
#include "VKDBiReceiver.h"
#include "VKReceiver.h"
#include "VKReceiverMisc.h"

#include <cstdlib>
#include <cstring>
#include <memory>

namespace vk {

struct ReceiverNoun
{
    using Record = VK_RECEIVER;

    static constexpr const char* kName = "receiver";
    static constexpr const auto& kFields = kReceiverTable.fields;
    static constexpr const char* kColumns[] = {"id", "name", "pin", "type", "department_id", "description"};
    static constexpr CodeText<int> kTypes[] = {
        {VKReceiverAlpha, "alpha"}, {VKReceiverNumeric, "numeric"}, {VKReceiverTwoWay, "two-way"}, {VKReceiverFax, "fax"}};
    static constexpr ColumnWords kWords[] = {{"type", kTypes}};

    static constexpr auto kStore = &VKDatabase::getVKDBiReceiverObject;

    static bool Add(VKDBiReceiver& store, const Arguments& arguments, Record& receiver)
    {
        SetDefaults(receiver);
        SetDevice(arguments, receiver);
        SetPassword(arguments, receiver);
        return store.Add(&receiver, true);
    }

    /// What the columns do not say of a new receiver: it is available, and a two-way device answers.
    static void SetDefaults(Record& receiver)
    {
        constexpr int available = 1;
        if (receiver.status_code == 0)
            receiver.status_code = available;
        receiver.two_way = receiver.two_way || receiver.type == VKReceiverTwoWay;
    }

    template <class Change>
    static bool Modify(VKDBiReceiver& store, const Arguments& arguments, Record& receiver, Change&& change)
    {
        const unsigned long department = receiver.department_id;
        change();
        if (arguments.Has("--new-name"))
            SetFromText(receiver.name, arguments.Text("--new-name"), "--new-name");
        SetDevice(arguments, receiver);
        // The one that was read is a digest already.
        const bool isClear = SetPassword(arguments, receiver);
        return store.Modify(&receiver, department, isClear, nullptr, nullptr, true);
    }

    static bool Delete(VKDBiReceiver& store, const Record& receiver)
    {
        return store.Delete(receiver.id, receiver.department_id);
    }

    static void Filter(VKDBiReceiver& store, const Arguments& arguments) { SetReceiverFilter(store, arguments); }

    template <class Visit>
    static void ForEach(VKDBiReceiver& store, Visit&& visit)
    {
        VK_RECEIVER_LIST list;
        const ListGuard<VK_RECEIVER_LIST, EmptyReceiverList> guard{list};
        store.Get(&list);
        for (int i = 0; i < list.count; ++i)
            visit(list.list[i]);
    }

    static ShownRecord Details(VKDBiReceiver&, const Record& receiver)
    {
        Json::Value departments(Json::arrayValue);
        for (int i = 0; i < receiver.dept_rights_count; ++i)
            departments.append(static_cast<Json::UInt64>(receiver.dept_rights[i].department_id));
        ShownRecord shown = {{"guest_departments", departments}};
        // A copy that owns nothing but what is read into it.
        Record device;
        std::memcpy(device.name, receiver.name, sizeof device.name);
        const std::unique_ptr<char, decltype(&std::free)> settings(
            strdup(receiver.misc_settings == nullptr ? "" : receiver.misc_settings), &std::free);
        device.misc_settings = settings.get();
        if (ConvertJSONToMXPFieldsData(&device) && device.mxp->device_push_service_set)
            shown.emplace_back("device_push_service", device.mxp->device_push_service);
        std::free(device.mxp);
        return shown;
    }

    static void Empty(Record& receiver) { EmptyReceiver(&receiver); }

private:
    /// What a mobile device is reached with; it stands in misc_settings, beside what the device itself has stored there.
    struct DeviceOption
    {
        const char* name;
        char (VK_MXP_FIELDS::*text)[256];
        bool VK_MXP_FIELDS::*given;
        bool isSecret; ///< the first line of a file
    };
    static constexpr DeviceOption kDeviceOptions[] = {
        {"--mxp-password-file", &VK_MXP_FIELDS::mxp_password, &VK_MXP_FIELDS::mxp_password_set, true},
        {"--bk-mxp-password-file", &VK_MXP_FIELDS::bk_mxp_password, &VK_MXP_FIELDS::bk_mxp_password_set, true},
        {"--device-id", &VK_MXP_FIELDS::device_id, &VK_MXP_FIELDS::device_id_set, false},
        {"--device-push-service", &VK_MXP_FIELDS::device_push_service, &VK_MXP_FIELDS::device_push_service_set, false},
    };

    static void SetDevice(const Arguments& arguments, Record& receiver)
    {
        const std::string code = "--security-code-file";
        if (arguments.Has(code))
            SetFromText(receiver.security_code, ReadPassword(arguments.Text(code)), code);
        for (const DeviceOption& option : kDeviceOptions) {
            if (!arguments.Has(option.name))
                continue;
            const std::string text = arguments.Text(option.name);
            VK_MXP_FIELDS& fields = *NeedMxpFields(&receiver);
            SetFromText(fields.*option.text, option.isSecret ? ReadPassword(text) : text, option.name);
            fields.*option.given = true;
        }
    }

    static bool SetPassword(const Arguments& arguments, Record& receiver)
    {
        const std::string option = "--account-password-file";
        if (arguments.Has(option))
            SetFromText(receiver.acct_pwd, ReadPassword(arguments.Text(option)), option);
        return arguments.Has(option);
    }
};

} // namespace vk
