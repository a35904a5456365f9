#include "VKSQLite3MessageQueue.h"

#include <unistd.h>

#include "VKDBexception.h"
#include "VKMsgQueueFileOperations.h"
#include "VKSQLite3EntityFile.h"
#include "VKSQLite3MessageFiles.h"
#include "VKioDirectory.h"

const VKSQLite3TableDesc VKSQLite3MessageQueue::tTableDesc[1] = {
    {vk::kQueueTable.name.file, vk::SQLite3Columns<vk::kQueueTable>()}};

namespace {

constexpr const char* kFile = "queue_metabase.sdb";

constexpr vk::SQLite3Index kIndexes[] = {
    {"ix_lock_time", "queue_metadata", "lock_time"},
    {"ix_last_modify_time", "queue_metadata", "last_modify_time"},
    {"ix_msg_name", "queue_metadata", "msg_name"},
    {"ix_msg_status", "queue_metadata", "msg_status"},
    {"ix_msg_query_count", "queue_metadata", "msg_query_count"},
    {"ix_msg_protocol", "queue_metadata", "msg_protocol"},
};

/// With these a poll's cost grows with the messages that are ready, not with those that wait for their time.
constexpr const char* kPollIndexes[] = {
    "CREATE INDEX IF NOT EXISTS 'ix_msg_status_query' ON 'queue_metadata' (msg_status, next_query_time);",
    "CREATE INDEX IF NOT EXISTS 'ix_msg_status_modify' ON 'queue_metadata' (msg_status, last_modify_time);",
};

/// A write-ahead log needs memory that processes share, which a network's file system has not. There the journal's file
/// stays, because making and deleting one with each change costs more than the change itself.
void UseFastJournal(vk::SQLite3Connection& connection)
{
    const auto mode = connection.ExecuteSelectQuery("PRAGMA journal_mode=WAL;");
    if ((*mode)[0][0].GetValueString() != "wal")
        connection.Database().SetJournalMode("PERSIST");
}

} // namespace

bool VKSQLite3MessageQueue::Initialize(VKDBsystem* system)
{
    VKMsgQueueFileOperations files(QueueNumber(), "");
    files.Initialize(system);
    auto connection = std::make_unique<vk::SQLite3Connection>(files.GetQueuePath(), kFile, tTableDesc, 1);
    connection->Database().SetSynchronousMode(0);
    UseFastJournal(*connection);
    vk::AddMissingColumns(*connection, vk::kQueueTable, "The Queue Meta table could not be accessed.");
    vk::CreateIndexes(*connection, kIndexes, std::size(kIndexes));
    vk::InTransaction(*connection, vk::TransactionLock::Exclusive, [&] {
        for (const char* index : kPollIndexes)
            connection->ExecuteUpdateQuery(index);
    });
    UseStore(std::make_unique<vk::SqlStore>(std::move(connection), kStatementLimit),
             std::make_unique<vk::SQLite3MessageFiles>(std::move(files)), vk::kQueueTable.name);
    return VKDBbaseInterface::Initialize(system);
}

bool VKSQLite3MessageQueue::CreateQueue(int queueNumber)
{
    return VKioDirectory::CreateFullPath(VKMsgQueueFileOperations(queueNumber, "").GetDirPath(GetDbSystem()));
}

bool VKSQLite3MessageQueue::DeleteQueue(int queueNumber)
{
    if (queueNumber == QueueNumber())
        return false;
    std::string path;
    {
        VKSQLite3MessageQueue queue(queueNumber, "");
        queue.Initialize(GetDbSystem());
        if (queue.GetTotalRecordCount() > 0)
            return false;
        path = queue.GetQueueName();
    }
    for (const char* behind : {"", "-journal", "-wal", "-shm", "-intent"})
        unlink((path + "/" + kFile + behind).c_str());
    rmdir((path + "/" + kFile + "-undo").c_str());
    return rmdir(path.c_str()) == 0;
}
