#include "ClientCommands.h"

#include "AdminOutput.h"
#include "AdminRoot.h"
#include "RecordForm.h"
#include "VKDBiActiveMxpClient.h"
#include "VKDatabase.h"

#include <ctime>
#include <limits>

namespace vk {

namespace {

constexpr ColumnWords kWords[] = {{"active_mode", kActivationModes}};
constexpr const char* kColumns[] = {"id",           "client_name",  "platform", "active_mode", "is_authorized",
                                    "is_suspended", "created_time", "receiver"};

VKDBiActiveMxpClient& Store(const Arguments& arguments)
{
    return UseEntity(arguments, &VKDatabase::getVKDBiActiveMxpClientObject);
}

ShownRecord Shown(const VKActiveMxpClientInfo& client)
{
    return ShownValues(kActiveMxpClientTable.fields, kWords, {}, client);
}

/// Changes the client of --id and tells what became of it.
template <class Change> int ChangeClient(const Arguments& arguments, const char* what, Change&& change)
{
    VKDBiActiveMxpClient& store = Store(arguments);
    VKActiveMxpClientInfo client;
    if (!store.GetByID(IdOption(arguments), &client))
        return Refused("there is no client " + arguments.Text("--id"));
    change(store, client);
    PrintDone("client " + std::to_string(client.id) + " " + what,
              {{"id", static_cast<Json::UInt64>(client.id)}, {"done", what}}, arguments.Has("--json"));
    return kExitOk;
}

int SetSuspended(const Arguments& arguments, bool suspended)
{
    return ChangeClient(arguments, suspended ? "suspended" : "resumed", [&](auto& store, auto& client) {
        client.is_suspended = suspended;
        client.suspended_time = suspended ? static_cast<long>(std::time(nullptr)) : 0;
        store.Modify(&client);
    });
}

} // namespace

int ListClients(const Arguments& arguments)
{
    constexpr long kMost = std::numeric_limits<long>::max();
    VKDBiActiveMxpClient& store = Store(arguments);
    store.SetFilter(arguments.Text("--name"), arguments.Number("--from", 1, kMost, 1),
                    arguments.Has("--from") || arguments.Has("--to") ? arguments.Number("--to", 1, kMost, kMost) : 0);
    store.SetSort(!arguments.Has("--descending"));
    const Page page(arguments);
    store.SetFilter(page.size, page.number);
    std::vector<VKActiveMxpClientView> clients;
    store.GetForView(&clients);
    std::vector<ShownRecord> shown;
    for (const VKActiveMxpClientView& client : clients) {
        shown.push_back(Shown(client));
        shown.back().emplace_back("receiver", client.GetShownName());
    }
    PrintTable(shown, kColumns, arguments.Has("--json"));
    return kExitOk;
}

int ShowClient(const Arguments& arguments)
{
    RequireOneOf(arguments, "--id", "--name");
    VKDBiActiveMxpClient& store = Store(arguments);
    VKActiveMxpClientInfo client;
    const std::string name = arguments.Text("--name");
    if (arguments.Has("--id") ? !store.GetByID(IdOption(arguments), &client) : !store.GetByName(name, &client))
        return Refused("there is no client " + arguments.Text("--id", "'" + name + "'"));
    PrintRecord(Shown(client), arguments.Has("--json"));
    return kExitOk;
}

int DeleteClient(const Arguments& arguments)
{
    return ChangeClient(arguments, "deleted", [](auto& store, auto& client) { store.Delete(client.id); });
}

int AuthorizeClient(const Arguments& arguments)
{
    const bool authorized = !arguments.Has("--revoke");
    return ChangeClient(arguments, authorized ? "authorized" : "no longer authorized",
                        [&](auto& store, auto& client) { store.UpdateAuthorization(client.id, authorized); });
}

int SetClientMode(const Arguments& arguments)
{
    const std::string mode = arguments.Text("--mode");
    return ChangeClient(arguments, ("in mode " + mode).c_str(), [&](auto& store, auto& client) {
        store.UpdateActivationMode(client.id, VKDBiActiveMxpClient::GetActivationMode(mode));
    });
}

int SuspendClient(const Arguments& arguments) { return SetSuspended(arguments, true); }
int ResumeClient(const Arguments& arguments) { return SetSuspended(arguments, false); }

} // namespace vk
