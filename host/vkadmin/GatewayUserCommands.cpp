#include "GatewayUserCommands.h"

#include "AdminInput.h"
#include "AdminOutput.h"
#include "AdminRoot.h"
#include "RecordForm.h"
#include "VKDBiXmppGWUser.h"
#include "VKDatabase.h"

#include <ctime>

namespace vk {

namespace {

constexpr ColumnWords kWords[] = {{"type", kXmppGWUserTypes}};
constexpr const char* kColumns[] = {"id", "user_id", "name", "type", "enabled", "vk_user_id", "VKUserName"};
constexpr CodeText<int> kSorts[] = {{VKDBiXmppGWUser::SortType, "type"},
                                    {VKDBiXmppGWUser::SortUserID, "user-id"},
                                    {VKDBiXmppGWUser::SortName, "name"},
                                    {VKDBiXmppGWUser::SortEnabled, "enabled"},
                                    {VKDBiXmppGWUser::SortVKUserName, "owner"}};

VKDBiXmppGWUser& Store(const Arguments& arguments)
{
    return UseEntity(arguments, &VKDatabase::getVKDBiXmppGWUserObject);
}

/// The account that --id or --user-id names. False when there is none, which is told.
bool Find(VKDBiXmppGWUser& store, const Arguments& arguments, VKXmppGWUser& user)
{
    const bool found = arguments.Has("--id") ? store.GetByID(IdOption(arguments), &user, false)
                                             : store.GetByName(&user, arguments.Text("--user-id"), false);
    if (!found)
        Refused("there is no gateway user " + arguments.Text("--id", "'" + arguments.Text("--user-id") + "'"));
    return found;
}

bool IsTaken(VKDBiXmppGWUser& store, const VKXmppGWUser& user)
{
    unsigned long holder = 0;
    if (store.IsUniqueName(user.user_id, &holder) || holder == user.id)
        return false;
    Refused("gateway user " + std::to_string(holder) + " has the login '" + user.user_id + "' already");
    return true;
}

/// Fills a record from the options; the password from its file.
void Fill(const Arguments& arguments, VKXmppGWUser& user)
{
    FillFromOptions(kXmppGWUserTable.fields, kWords, arguments, user);
    if (arguments.Has("--password-file"))
        user.user_password = ReadPassword(arguments.Text("--password-file"));
    RequireLengths(kXmppGWUserTable.fields, user);
    if (user.user_id.empty())
        throw UsageError("--user-id: is empty");
}

int SetEnabled(const Arguments& arguments, bool enabled)
{
    RequireOneOf(arguments, "--id", "--user-id");
    VKDBiXmppGWUser& store = Store(arguments);
    VKXmppGWUser user;
    if (!Find(store, arguments, user))
        return kExitFailed;
    store.UpdateStatus(user.id, enabled ? 1 : 0);
    PrintDone(user.user_id + (enabled ? " enabled" : " disabled"),
              {{"id", static_cast<Json::UInt64>(user.id)}, {"enabled", enabled}}, arguments.Has("--json"));
    return kExitOk;
}

} // namespace

int ListGatewayUsers(const Arguments& arguments)
{
    VKDBiXmppGWUser& store = Store(arguments);
    store.SetFilter(arguments.Text("--name"));
    store.SetFilterAssignedVKUser(IdOption(arguments, "--vk-user-id"));
    const auto field =
        CodeOfText(kSorts, arguments.Text("--sort", "name"), static_cast<int>(VKDBiXmppGWUser::SortName));
    store.SetSort(static_cast<VKDBiXmppGWUser::SortFld>(field), !arguments.Has("--descending"));
    const Page page(arguments);
    store.SetFilter(page.size, page.number);
    std::vector<VKXmppGWUserView> users;
    store.Get(&users, !arguments.Has("--all"));
    std::vector<ShownRecord> shown;
    for (const VKXmppGWUserView& user : users)
        shown.push_back(ShownValues(kXmppGWUserViewFields, kWords, {}, user));
    PrintTable(shown, kColumns, arguments.Has("--json"));
    return kExitOk;
}

int ShowGatewayUser(const Arguments& arguments)
{
    RequireOneOf(arguments, "--id", "--user-id");
    VKXmppGWUser user;
    if (!Find(Store(arguments), arguments, user))
        return kExitFailed;
    PrintRecord(ShownValues(kXmppGWUserTable.fields, kWords, {}, user), arguments.Has("--json"));
    return kExitOk;
}

int AddGatewayUser(const Arguments& arguments)
{
    VKXmppGWUser user;
    user.type = VKXmppGWUserNormal;
    user.name = arguments.Text("--user-id");
    user.creation_time = static_cast<long>(std::time(nullptr));
    user.enabled = true;
    Fill(arguments, user);
    VKDBiXmppGWUser& store = Store(arguments);
    if (IsTaken(store, user))
        return kExitFailed;
    store.Add(&user, false);
    PrintNewId(user.id, arguments.Has("--json"));
    return kExitOk;
}

int ModifyGatewayUser(const Arguments& arguments)
{
    VKDBiXmppGWUser& store = Store(arguments);
    VKXmppGWUser user;
    if (!store.GetByID(IdOption(arguments), &user, false))
        return Refused("there is no gateway user " + arguments.Text("--id"));
    Fill(arguments, user);
    if (IsTaken(store, user))
        return kExitFailed;
    store.Modify(&user);
    PrintDone(user.user_id + " changed", {{"id", static_cast<Json::UInt64>(user.id)}}, arguments.Has("--json"));
    return kExitOk;
}

int DeleteGatewayUser(const Arguments& arguments)
{
    RequireOneOf(arguments, "--id", "--user-id");
    VKDBiXmppGWUser& store = Store(arguments);
    VKXmppGWUser user;
    if (!Find(store, arguments, user))
        return kExitFailed;
    store.Delete(user.id);
    PrintDone(user.user_id + " deleted", {{"deleted", static_cast<Json::UInt64>(user.id)}}, arguments.Has("--json"));
    return kExitOk;
}

int EnableGatewayUser(const Arguments& arguments) { return SetEnabled(arguments, true); }
int DisableGatewayUser(const Arguments& arguments) { return SetEnabled(arguments, false); }

} // namespace vk
