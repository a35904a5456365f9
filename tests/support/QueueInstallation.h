#pragma once

#include "Backend.h"
#include "PostgresServer.h"
#include "QueueStore.h"
#include "RunningProgram.h"
#include "TempDir.h"
#include "VKConfiguration.h"
#include "VKDBsystem.h"
#include "VKRecordText.h"

#include <json/json.h>

#include <filesystem>
#include <map>
#include <set>
#include <sstream>
#include <stdexcept>

/// An installation root of its own with queues, and a service that looks into them from outside. One on a server begins
/// with all its tables new and empty.
class QueueInstallation
{
public:
    explicit QueueInstallation(Backend backend) : m_backend(backend)
    {
        std::vector<std::string> init = {"--root", Root(), "init"};
        if (OnServer()) {
            PostgresServer::Get().MakeTables();
            init.insert(init.end(), {"--dsn", PostgresServer::kSource, "--db-user", "postgres"});
        }
        const ProgramRun made = ProgramRun::Of("vkadmin", init);
        if (made.exitCode != 0)
            throw std::runtime_error(made.err);
        VKConfiguration& configuration = *VKConfiguration::getVKConfiguration();
        configuration.setConfDirectory(Root() + "/config");
        configuration.loadPrimaryConfiguration(true);
        if (OnServer())
            m_system.OpenDatabase(PostgresServer::kSource, "postgres", "", DbTypeOdbc, nullptr, false, false, true, nullptr);
        else
            m_system.OpenSdb(Root() + "/config", "", configuration.getDirectory(true), nullptr, 0, nullptr);
    }
    ~QueueInstallation() { m_system.Close(); }

    bool OnServer() const { return m_backend == Backend::PostgreSql; }
    std::string Root() const { return m_dir / "root"; }
    const TempDir& Dir() const { return m_dir; }

    vk::QueueStore Queue(int number) const
    {
        if (OnServer())
            m_system.ReviveSharedConnection();
        return {m_system, number, "looker-on"};
    }

    /// Puts a message into a queue, with the job's name and whatever else its row is to hold.
    void Add(int queue, const std::string& job, const std::string& body, VK_MESSAGE_HEADER header = {},
             const std::string& protocol = "mxp") const
    {
        vk::SetText(header.msg_name, "M.0." + job + "." + protocol, "msg_name");
        if (header.create_time == 0)
            header.create_time = std::time(nullptr);
        Queue(queue).Add(header, body);
    }

    /// The names of the messages in a queue.
    std::set<std::string> Names(int queue) const
    {
        std::set<std::string> names;
        for (const VK_MESSAGE_HEADER& header : Queue(queue).List("", ""))
            names.insert(header.msg_name);
        return names;
    }

    /// The body of a message as JSON; null when there is none.
    Json::Value Body(int queue, const std::string& name) const
    {
        VK_MESSAGE_HEADER header;
        std::string body;
        Json::Value json;
        if (Queue(queue).Load(name, header, body))
            std::istringstream(body) >> json;
        return json;
    }

    bool Await(int queue, const std::set<std::string>& names) const
    {
        return Until([&] { return Names(queue) == names; });
    }

    /// The message files of a queue's directory.
    std::set<std::string> Files(const std::string& folder) const
    {
        std::set<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(std::filesystem::path(Root()) / folder))
            if (const std::string name = entry.path().filename(); name.rfind("queue_metabase.sdb", 0) != 0)
                names.insert(name);
        return names;
    }

    /// Whether each message file of a queue has a row and each row a file; on a server there is no file.
    bool IsWhole(int queue) const
    {
        const std::set<std::string> rows = OnServer() ? std::set<std::string>() : Names(queue);
        return Files(FolderOf(queue)) == rows;
    }

    /// Takes the place of a queue's messages away, and brings it back as it was.
    void TakeAway(int queue) const { Move(queue, FolderOf(queue), "away"); }
    void BringBack(int queue) const { Move(queue, "away", FolderOf(queue)); }

    static std::string FolderOf(int queue)
    {
        static const std::map<int, std::string> kFolders = {{1, "spool"}, {4, "archive"}, {5, "error"}, {10, "waiting"}};
        return kFolders.at(queue);
    }
    static std::string TableOf(int queue)
    {
        static const std::map<int, std::string> kTables = {
            {1, "VK_QUEUE_PAGING"}, {4, "VK_QUEUE_COMPLETED"}, {5, "VK_QUEUE_FAILED"}, {10, "VK_QUEUE_WAITING"}};
        return kTables.at(queue);
    }

private:
    void Move(int queue, const std::string& from, const std::string& to) const
    {
        const std::filesystem::path root = Root();
        if (!OnServer())
            std::filesystem::rename(root / from, root / to);
        else if (to == "away")
            PostgresServer::Get().RunScript("ALTER TABLE " + TableOf(queue) + " RENAME TO away");
        else
            PostgresServer::Get().RunScript("ALTER TABLE away RENAME TO " + TableOf(queue));
    }

    const Backend m_backend;
    TempDir m_dir;
    mutable VKDBsystem m_system;
};
