#include "ReceiverCommands.h"

#include "ReceiverNoun.h"
#include "VKDBiDepartment.h"
#include "VKReceiverAvailability.h"

#include <algorithm>
#include <ctime>
#include <limits>

namespace vk {

namespace {

using Receivers = EntityVerbs<ReceiverNoun>;

constexpr int kAvailable = 1;
constexpr int kOffDuty = 2;
constexpr const char* kPeriodColumns[] = {"disable_start_date", "disable_end_date", "forward_to_id"};
constexpr const char* kPeriodHidden[] = {"id", "receiver_id", "forward_to_number"};
constexpr const char* kValueColumns[] = {"attribute", "value"};
constexpr const char* kDepartmentColumns[] = {"department_id"};

using Periods = VK_DISABLE_HISTORY_LIST;
using PeriodsGuard = ListGuard<Periods, EmptyDisableHistoryList>;

Json::UInt64 Number(unsigned long value) { return value; }

/// Becomes available: the period that lasts, or is to come, ends.
void BecomeAvailable(VKDBiReceiver& store, VK_RECEIVER& receiver, long now)
{
    Periods open;
    const PeriodsGuard guard{open};
    store.GetDisableHistory(&open, receiver.id, now, 0);
    receiver.status_code = kAvailable;
    receiver.disable_start_date = receiver.disable_end_date = 0;
    VK_DISABLE_HISTORY* const last = open.count > 0 ? &open.list[open.count - 1] : nullptr;
    if (last != nullptr)
        last->disable_end_date = std::max(now, last->disable_start_date);
    store.ChangeStatus(&receiver, last, nullptr, true);
}

/// Becomes unavailable for a period, or for another one than before.
void BecomeUnavailable(VKDBiReceiver& store, VK_RECEIVER& receiver, long from, long to, long now)
{
    Periods open;
    const PeriodsGuard guard{open};
    if (receiver.status_code > kAvailable)
        store.GetDisableHistory(&open, receiver.id, now, 0);
    receiver.status_code = kOffDuty;
    receiver.disable_start_date = from;
    receiver.disable_end_date = to;
    VK_DISABLE_HISTORY period;
    VK_DISABLE_HISTORY& changed = open.count > 0 ? open.list[open.count - 1] : period;
    changed.disable_start_date = from;
    changed.disable_end_date = to;
    changed.forward_to_id = 0; // the cover ends with the change
    store.ChangeStatus(&receiver, open.count > 0 ? &changed : nullptr, open.count > 0 ? nullptr : &changed, true);
}

void ChangeStatus(VKDBiReceiver& store, const Arguments& arguments, VK_RECEIVER& receiver, long now)
{
    constexpr long long most = std::numeric_limits<int>::max();
    const long from = static_cast<long>(arguments.Number("--from", 1, most, now));
    const long to = static_cast<long>(arguments.Number("--to", 1, most, 0));
    const bool hasPeriod = arguments.Has("--from") || arguments.Has("--to");
    if (arguments.Text("--set") == "available") {
        if (hasPeriod)
            throw UsageError("--from and --to go with --set unavailable");
        BecomeAvailable(store, receiver, now);
        return;
    }
    if (to == 0 && !VKDBiReceiver::s_bIsCoverByAllowed)
        throw UsageError("--to is missing: an open end counts only in an installation that allows covers");
    if (to != 0 && (to < from || to < now))
        throw UsageError("--to: " + std::to_string(to) + " lies before " + (to < now ? "now" : "--from"));
    BecomeUnavailable(store, receiver, from, to, now);
}

ShownRecord StatusOf(const VK_RECEIVER& receiver, long now)
{
    return {{"id", Number(receiver.id)},
            {"name", receiver.name},
            {"available", !IsReceiverDisabledAtTime(&receiver, now)},
            {"status_code", receiver.status_code},
            {"disable_start_date", Json::Int64(receiver.disable_start_date)},
            {"disable_end_date", Json::Int64(receiver.disable_end_date)},
            {"forward_to_id", Number(receiver.forward_to_id)}};
}

/// With the periods in which it was not available: a table behind it, or a member of it.
void PrintStatus(ShownRecord status, const Periods& periods, bool json)
{
    std::vector<ShownRecord> rows;
    Json::Value objects(Json::arrayValue);
    for (int i = 0; i < periods.count; ++i) {
        rows.push_back(ShownValues(kDisableHistoryTable.fields, {}, kPeriodHidden, periods.list[i]));
        Json::Value& object = objects.append(Json::Value(Json::objectValue));
        for (const auto& [key, value] : rows.back())
            object[key] = value;
    }
    if (json)
        status.emplace_back("periods", objects);
    PrintRecord(status, json);
    if (!json && !rows.empty())
        PrintTable(rows, kPeriodColumns, false);
}

using Values = VK_RECEIVER_ATTRIBUTE_LIST;
using ValuesGuard = ListGuard<Values, EmptyReceiverAttributeList>;

void RemoveValue(Values& values, unsigned long attributeId)
{
    VK_RECEIVER_ATTRIBUTE* const end = values.list + values.count;
    values.count = static_cast<int>(std::remove_if(values.list, end,
                                                   [&](const VK_RECEIVER_ATTRIBUTE& value) {
                                                       return value.attribute_id == attributeId;
                                                   }) -
                                    values.list);
}

/// The changes that are asked for, made to a receiver's values. False when there are none.
bool ChangeValues(VKDBiReceiver& store, const Arguments& arguments, unsigned long receiverId, Values& values)
{
    const auto set = arguments.All("--set"), removed = arguments.All("--remove");
    for (const std::string& name : removed)
        RemoveValue(values, AttributeId(store, name, "--remove"));
    for (const std::string& text : set) {
        const auto [name, content] = SplitAssignment(text, "--set");
        VK_RECEIVER_ATTRIBUTE value;
        value.receiver_id = receiverId;
        value.attribute_id = AttributeId(store, name, "--set");
        SetFromText(value.attribute_values, content, "--set");
        RemoveValue(values, value.attribute_id);
        AddReceiverAttribute(&values, &value);
    }
    return !set.empty() || !removed.empty();
}

std::string NameOf(const std::vector<VK_NAME_RECORD>& names, unsigned long id)
{
    for (const VK_NAME_RECORD& name : names)
        if (name.id == id)
            return name.name;
    return std::to_string(id);
}

bool IsDepartment(const Arguments& arguments, unsigned long id)
{
    VK_DEPARTMENT department;
    return UseEntity(arguments, &VKDatabase::getVKDBiDepartmentObject).GetByID(&department, id);
}

} // namespace

int ReceiverStatus(const Arguments& arguments)
{
    VKDBiReceiver& store = Receivers::Store(arguments);
    Receivers::Owned receiver;
    if (!Receivers::Find(store, arguments, receiver.value))
        return kExitFailed;
    const long now = std::time(nullptr);
    if (arguments.Has("--set"))
        ChangeStatus(store, arguments, receiver.value, now);
    else if (arguments.Has("--from") || arguments.Has("--to"))
        throw UsageError("--from and --to go with --set unavailable");
    const unsigned long id = receiver.value.id;
    if (!store.GetByID(&receiver.value, id))
        return Refused("receiver " + std::to_string(id) + " is gone");
    Periods periods;
    const PeriodsGuard guard{periods};
    store.GetDisableHistory(&periods, id, 0, 0);
    PrintStatus(StatusOf(receiver.value, now), periods, arguments.Has("--json"));
    return kExitOk;
}

int ReceiverGuestDepartments(const Arguments& arguments)
{
    VKDBiReceiver& store = Receivers::Store(arguments);
    Receivers::Owned receiver;
    if (!Receivers::Find(store, arguments, receiver.value))
        return kExitFailed;
    const unsigned long id = receiver.value.id;
    const auto each = [&](const char* option, auto&& change) {
        for (const std::string& text : arguments.All(option)) {
            unsigned long department = 0;
            SetFromText(department, text, option);
            change(department);
        }
    };
    return UnlessRefused([&] {
        each("--add", [&](unsigned long department) {
            if (!IsDepartment(arguments, department))
                throw UsageError("--add: there is no department " + std::to_string(department));
            store.AddGuestDepartment(id, department);
        });
        each("--remove", [&](unsigned long department) { store.DeleteGuestDepartment(id, department); });
        store.GetByID(&receiver.value, id);
        std::vector<ShownRecord> shown;
        for (int i = 0; i < receiver.value.dept_rights_count; ++i)
            shown.push_back({{"department_id", Number(receiver.value.dept_rights[i].department_id)}});
        PrintTable(shown, kDepartmentColumns, arguments.Has("--json"));
        return static_cast<int>(kExitOk);
    });
}

int ReceiverAttributes(const Arguments& arguments)
{
    VKDBiReceiver& store = Receivers::Store(arguments);
    Receivers::Owned receiver;
    if (!Receivers::Find(store, arguments, receiver.value))
        return kExitFailed;
    return UnlessRefused([&] {
        Values values;
        const ValuesGuard guard{values};
        store.GetReceiverAttributeByRcvID(&values, receiver.value.id);
        if (ChangeValues(store, arguments, receiver.value.id, values))
            store.ReplaceReceiverAttributes(receiver.value.id, &values);
        std::vector<VK_NAME_RECORD> names;
        store.GetAttributesNameList(names);
        std::vector<ShownRecord> shown;
        for (int i = 0; i < values.count; ++i)
            shown.push_back({{"attribute", NameOf(names, values.list[i].attribute_id)},
                             {"value", values.list[i].attribute_values}});
        PrintTable(shown, kValueColumns, arguments.Has("--json"));
        return static_cast<int>(kExitOk);
    });
}

} // namespace vk
