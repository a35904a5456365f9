#include "SessionCommands.h"

#include "AdminOutput.h"
#include "AdminRoot.h"
#include "RecordForm.h"
#include "VKXmppGWUserSessionDB.h"

#include <ctime>
#include <limits>
#include <memory>

namespace vk {

namespace {

constexpr CodeText<int> kTypes[] = {{VKXmppGWSessionNone, "None"}, {VKXmppGWSessionMXP, "MXP"},
                                    {VKXmppGWSessionXMPP, "XMPP"}};
constexpr ColumnWords kWords[] = {{"type", kTypes}};
constexpr const char* kColumns[] = {"user_id", "user_name", "type", "jid", "created_time"};

std::unique_ptr<VKXmppGWUserSessionDB> OpenSessions(const Arguments& arguments)
{
    auto sessions = std::make_unique<VKXmppGWUserSessionDB>(UseRoot(arguments));
    if (!sessions->GetOpenError().empty())
        throw std::runtime_error("the session store cannot be opened: " + sessions->GetOpenError());
    return sessions;
}

/// The user of a JID that has one and a domain; anything else is a UsageError.
std::string UserOf(const std::string& jid)
{
    const std::string bare = jid.substr(0, jid.find('/'));
    const std::size_t at = bare.find('@');
    if (at == 0 || at == std::string::npos || at + 1 == bare.size() || bare.find('@', at + 1) != std::string::npos)
        throw UsageError("--jid: '" + jid + "' is no JID of an account");
    return bare.substr(0, at);
}

ShownRecord Shown(const VKXmppGWUserSession& session)
{
    return ShownValues(kUserSessionTable.fields, kWords, {}, session);
}

} // namespace

int AddSession(const Arguments& arguments)
{
    VKXmppGWUserSession session;
    session.type = VKXmppGWSessionMXP;
    session.jid = arguments.Text("--jid");
    session.user_name = arguments.Text("--user-name", UserOf(session.jid));
    session.user_id = static_cast<unsigned long>(
        arguments.Number("--user-id", 1, std::numeric_limits<long long>::max(), 0));
    session.created_time = static_cast<long>(std::time(nullptr));
    session.login_count = 1;

    const auto sessions = OpenSessions(arguments);
    VKXmppGWUserSession present;
    if (sessions->GetByJID(session.jid, &present))
        return Refused(session.jid + " is logged in already");
    if (!sessions->Add(&session))
        return Refused(session.jid + " was not stored");
    PrintNewId(session.id, arguments.Has("--json"));
    return kExitOk;
}

int ListSessions(const Arguments& arguments)
{
    std::vector<VKXmppGWUserSession> sessions;
    OpenSessions(arguments)->Get(&sessions, VKXmppGWSessionNone);
    std::vector<ShownRecord> shown;
    for (const auto& session : sessions)
        shown.push_back(Shown(session));
    PrintTable(shown, kColumns, arguments.Has("--json"));
    return kExitOk;
}

int RemoveSession(const Arguments& arguments)
{
    const std::string jid = arguments.Text("--jid");
    const auto sessions = OpenSessions(arguments);
    VKXmppGWUserSession session;
    if (!sessions->GetByJID(jid, &session) || !sessions->Delete(session.id))
        return Refused("there is no session of " + jid);
    PrintDone(session.jid + " removed", {{"removed", session.jid}}, arguments.Has("--json"));
    return kExitOk;
}

} // namespace vk
