#pragma once

#include <string>

#include "TempDir.h"
#include "VKConfiguration.h"
#include "VKDBiReceiver.h"
#include "VKDatabase.h"
#include "VKRecordText.h"
#include "VKSQLite3Receiver.h"

/// An installation with receivers in it; one for the whole program, because a process has one configuration.
class ReceiverInstallation
{
public:
    static ReceiverInstallation& Get()
    {
        static ReceiverInstallation installation;
        return installation;
    }
    static constexpr int kReceivers = 10000;

    std::string File() const { return m_root / "config/receivers.sdb"; }
    VKDatabase& Database() { return *VKDatabase::getVKMultiThreadedDatabase(nullptr, true); }

private:
    ReceiverInstallation()
    {
        m_root.Write("config/datasource", "database_type:\tSdb\n");
        VKConfiguration::getVKConfiguration()->setConfDirectory(m_root / "config");
        VKConfiguration::getVKConfiguration()->loadPrimaryConfiguration(true);
        VKSQLite3Receiver store;
        store.Initialize(Database().getDBSystemObject());
        VK_RECEIVER_LIST list;
        for (int i = 0; i < kReceivers; ++i) {
            VK_RECEIVER receiver;
            receiver.id = static_cast<unsigned long>(i) + 1;
            vk::SetText(receiver.name, "receiver " + std::to_string(i), "name");
            vk::SetText(receiver.pin, "user" + std::to_string(i) + "@example.org", "pin");
            AddReceiver(&list, &receiver);
        }
        store.ConvertRecords(&list);
        EmptyReceiverList(&list);
    }
    ~ReceiverInstallation() { Database().resetCache(); }

    const TempDir m_root;
};
