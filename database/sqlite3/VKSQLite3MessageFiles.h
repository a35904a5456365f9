#pragma once

#include <string>
#include <vector>

#include "VKMessageBodies.h"
#include "VKMsgQueueFileOperations.h"
#include "VKSQLite3QueueIntent.h"

namespace vk {

/// The message files beside the rows of a file database, changed together with them.
///
/// Which order makes every crash point safe. A transaction's number is the database's user_version plus one; it is
/// stored by the transaction itself. Under the write lock, in this order:
///   1. the intent ("queue_metabase.sdb-intent") gets the number and, before each file change, a line that tells it;
///   2. the file is changed; what is replaced is moved to a backup in "queue_metabase.sdb-undo", and what is to be
///      deleted is only told in the intent;
///   3. the rows and the number are committed;
///   4. before another process has its turn, the backups and what was to be deleted are deleted, and the intent is
///      emptied.
/// A process that dies before 3 leaves rows as they were and the intent's number one above user_version: whoever has
/// the lock next undoes the lines from last to first, before it looks at anything. A process that dies behind 3 leaves
/// the intent's number at user_version: whoever has the lock next deletes what was to be deleted and has no row; backups
/// that were left go when a queue is opened. Every line can be undone or finished twice and when its change never came,
/// so dying while doing that is safe too. Readers take the write lock, so nobody sees the files in between.
///
/// The system may lose what it has not yet written to the disk when the machine itself fails (synchronous mode 0):
/// a row that has no file then goes with the next read.
class SQLite3MessageFiles final : public MessageBodies
{
public:
    explicit SQLite3MessageFiles(VKMsgQueueFileOperations files);
    ~SQLite3MessageFiles() override;

    /// Waits for this caller's turn on the queue, two minutes at most, then throws: the database alone would look with
    /// growing sleeps. Only the database's own lock keeps rows and files safe.
    void Enter() override;
    void Leave() noexcept override;
    void Begin(SqlStore& store, const TableName& table, TransactionLock lock) override;
    void Undo() noexcept override;
    void Committed() noexcept override;

    bool StandApart() const override { return true; }
    bool Exists(const std::string& name) override;
    bool Load(const std::string& name, VK_MESSAGE_CONTENT* content) override;
    unsigned long Insert(const QueueRow& row, const VK_MESSAGE_CONTENT& content) override;
    void Update(const QueueRow& row, const VK_MESSAGE_CONTENT& content) override;
    void Move(const std::string& oldName, const std::string& newName) override;
    void Remove(const std::vector<std::string>& names) override;
    void RemoveAll() override;
    std::string Place() const override { return m_files.GetQueuePath(); }

private:
    /// One change of a file: what it was called, and what it is called now.
    struct Change
    {
        enum Kind : char { Written = 'W', Renamed = 'N', BackedUp = 'B', Doomed = 'D' } kind;
        std::string from;
        std::string to;
    };

    void Write(const std::string& name, const VK_MESSAGE_CONTENT& content);
    void Start();
    void Intend(std::vector<Change> changes);
    void BackUp(const std::vector<std::string>& names);
    bool PutAside(const std::string& name, const std::string& backup) const;
    static bool IsOwn(const Change& change);
    void SettleLeftovers();
    void ReadLeftovers();
    void UndoLeftovers();
    void FinishLeftovers();
    void UndoChanges();
    void RequireDeletable() const;
    void DeleteLeftoverBackups() const;
    void OpenDirectory();
    void CloseDirectory() noexcept;
    void RequireDone(bool done, const char* what, const std::string& name) const;

    VKMsgQueueFileOperations m_files;
    SQLite3QueueIntent m_intent;
    SqlStore* m_store = nullptr; ///< of the running transaction, as the table
    TableName m_table{};
    int m_iDirectory = -1; ///< descriptor of the queue's directory; -1 until a turn looks for a file
    long m_lNumber = 0;    ///< of the running transaction, once it has started a change
    bool m_bStarted = false; ///< the intent has the running transaction's number
    bool m_bSwept = false;   ///< the backups of those that died were deleted
    std::vector<Change> m_changes;
};

} // namespace vk
