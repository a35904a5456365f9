#pragma once

#include "ProgramRun.h"
#include "QueueStore.h"
#include "RunningProgram.h"
#include "TempDir.h"
#include "VKConfiguration.h"
#include "VKDBsystem.h"
#include "VKRecordText.h"

#include <json/json.h>

#include <filesystem>
#include <set>
#include <sstream>

/// An installation root of its own with queues, and a service that looks into them from outside.
class QueueInstallation
{
public:
    QueueInstallation()
    {
        ProgramRun::Of("vkadmin", {"--root", Root(), "init"});
        VKConfiguration& configuration = *VKConfiguration::getVKConfiguration();
        configuration.setConfDirectory(Root() + "/config");
        configuration.loadPrimaryConfiguration(true);
        m_system.OpenSdb(Root() + "/config", "", configuration.getDirectory(true), nullptr, 0, nullptr);
    }
    ~QueueInstallation() { m_system.Close(); }

    std::string Root() const { return m_dir / "root"; }
    const TempDir& Dir() const { return m_dir; }

    vk::QueueStore Queue(int number) const { return {m_system, number, "looker-on"}; }

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
        return RunningProgram::Await([&] { return Names(queue) == names; });
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

private:
    TempDir m_dir;
    mutable VKDBsystem m_system;
};
