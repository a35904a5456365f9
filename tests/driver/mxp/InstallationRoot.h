#pragma once

#include "TempDir.h"
#include "VKConfiguration.h"
#include "VKDBiReceiver.h"
#include "VKDatabase.h"
#include "VKXmppGWUserSessionDB.h"

#include <cstring>
#include <filesystem>
#include <stdexcept>
#include <string>

/// An installation on embedded files for one test program, with receivers and sessions in it. There is one
/// configuration in a process, so there can be one of these.
class InstallationRoot
{
public:
    InstallationRoot()
    {
        for (const char* directory : {"config", "temp", "logs", "spool", "waiting"})
            std::filesystem::create_directories(m_dir / directory);
        WriteConfig("dir", "spool_dir:\t\t" + (m_dir / "spool") + "\nwaiting_dir:\t\t" + (m_dir / "waiting") + "\n");
        WriteConfig("datasource", "database_type:\tSdb\n");
        WriteConfig("version", "test");
        VKConfiguration* const configuration = VKConfiguration::getVKConfiguration();
        configuration->setConfDirectory(m_dir / "config");
        configuration->loadPrimaryConfiguration(true);
    }

    /// The id of the new receiver.
    unsigned long AddReceiver(const std::string& name, const std::string& pin, int type)
    {
        VKDatabase* const database = VKDatabase::getVKMultiThreadedDatabase(nullptr, true);
        VKDBiReceiver* const receivers = database ? database->getVKDBiReceiverObject() : nullptr;
        if (!receivers)
            throw std::runtime_error("no receivers: " + (database ? database->getLastErrorString() : "no database"));
        VK_RECEIVER receiver;
        std::strncpy(receiver.name, name.c_str(), sizeof receiver.name - 1);
        std::strncpy(receiver.pin, pin.c_str(), sizeof receiver.pin - 1);
        receiver.type = type;
        if (!receivers->Add(&receiver, false))
            throw std::runtime_error("receiver " + name + " was not taken");
        return receiver.id;
    }

    void LogIn(unsigned long receiverId, const std::string& jid)
    {
        VKXmppGWUserSessionDB sessions(VKConfiguration::getVKConfiguration()->getRootDirectory(false));
        VKXmppGWUserSession session;
        session.type = VKXmppGWSessionMXP;
        session.user_id = receiverId;
        session.user_name = jid.substr(0, jid.find('@'));
        session.jid = jid;
        if (!sessions.Add(&session))
            throw std::runtime_error("session of " + jid + " was not taken");
    }

    void WriteConfig(const std::string& name, const std::string& text) { m_dir.Write("config/" + name, text); }
    void RemoveConfig(const std::string& name) { std::filesystem::remove(m_dir / ("config/" + name)); }
    void CopyConfig(const std::string& name, const std::string& from)
    {
        std::filesystem::copy_file(from, m_dir / ("config/" + name), std::filesystem::copy_options::overwrite_existing);
    }

private:
    TempDir m_dir;
};
