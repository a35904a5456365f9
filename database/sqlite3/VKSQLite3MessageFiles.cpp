#include "VKSQLite3MessageFiles.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <limits>
#include <set>
#include <sstream>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

#include "VKDBexception.h"
#include "VKMessageName.h"
#include "VKSqlStore.h"

namespace vk {

namespace {

constexpr const char* kBackups = "queue_metabase.sdb-undo";

/// user_version is a signed number of 32 bits.
long NumberAfter(long number) { return number >= std::numeric_limits<int>::max() ? 1 : number + 1; }

} // namespace

SQLite3MessageFiles::SQLite3MessageFiles(VKMsgQueueFileOperations files) : m_files(std::move(files)) {}

SQLite3MessageFiles::~SQLite3MessageFiles() { CloseDirectory(); }

void SQLite3MessageFiles::RequireDone(bool done, const char* what, const std::string& name) const
{
    if (!done)
        throw VKDBexception(DbError::General, __FILE__, __LINE__,
                            std::string("The message file [") + m_files.PathOf(name) + "] cannot be " + what + ".",
                            std::generic_category().message(errno));
}

/// Where turns are not kept apart all waiting is left to the database.
void SQLite3MessageFiles::Enter() { m_intent.TakeTurn(Place()); }

void SQLite3MessageFiles::Leave() noexcept
{
    CloseDirectory();
    m_intent.EndTurn();
}

/// Every transaction of the file database takes the write lock.
void SQLite3MessageFiles::Begin(SqlStore& store, const TableName& table, TransactionLock)
{
    m_store = &store;
    m_table = table;
    m_bStarted = false;
    m_changes.clear();
    if (!m_intent.IsEmpty())
        SettleLeftovers();
    if (!m_bSwept)
        DeleteLeftoverBackups();
    m_bSwept = true;
}

void SQLite3MessageFiles::Undo() noexcept
{
    try {
        UndoChanges();
        m_intent.Empty();
    } catch (...) { // the intent still tells it: the next transaction tries again
    }
    m_changes.clear();
}

/// A backup that cannot be deleted goes when the queue is opened again. Where turns are not kept apart, another process
/// may have begun a change of its own by now, of a message of a doomed name even: the intent stays as it is, and the next
/// transaction looks for the rows.
void SQLite3MessageFiles::Committed() noexcept
{
    if (!m_bStarted)
        return;
    std::set<std::string> doomed;
    for (const Change& change : m_changes) {
        if (change.kind == Change::BackedUp)
            unlink(m_files.PathOf(change.to).c_str());
        else if (change.kind == Change::Doomed)
            doomed.insert(change.from);
        else
            doomed.erase(change.kind == Change::Written ? change.from : change.to);
    }
    m_changes.clear();
    if (!m_intent.IsAlone())
        return;
    OpenDirectory();
    bool deleted = true;
    for (const std::string& name : doomed)
        deleted &= unlinkat(m_iDirectory, name.c_str(), 0) == 0 || errno == ENOENT;
    if (deleted) // otherwise the next transaction tries again
        m_intent.TryToEmpty();
}

/// One look-up of the directory serves all files of a turn.
void SQLite3MessageFiles::OpenDirectory()
{
    if (m_iDirectory < 0)
        m_iDirectory = open(m_files.GetQueuePath().c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
}

bool SQLite3MessageFiles::Exists(const std::string& name)
{
    OpenDirectory();
    return (m_iDirectory >= 0 && faccessat(m_iDirectory, name.c_str(), F_OK, 0) == 0) || m_files.CheckExists(name);
}

void SQLite3MessageFiles::CloseDirectory() noexcept
{
    if (m_iDirectory >= 0)
        close(m_iDirectory);
    m_iDirectory = -1;
}

bool SQLite3MessageFiles::Load(const std::string& name, VK_MESSAGE_CONTENT* content)
{
    return m_files.LoadMsgFileContent(name, content);
}

unsigned long SQLite3MessageFiles::Insert(const QueueRow& row, const VK_MESSAGE_CONTENT& content)
{
    const unsigned long id = m_store->InsertRow(Table{m_table, kQueueTable.fields}, row);
    Write(row.msg_name, content);
    return id;
}

void SQLite3MessageFiles::Update(const QueueRow& row, const VK_MESSAGE_CONTENT& content)
{
    m_store->UpdateRow(Table{m_table, kQueueTable.fields}, row);
    Write(row.msg_name, content);
}

void SQLite3MessageFiles::Write(const std::string& name, const VK_MESSAGE_CONTENT& content)
{
    BackUp({name});
    Intend({{Change::Written, name, ""}});
    RequireDone(m_files.WriteMsgFileContent(name, &content), "written", name);
}

/// Without a file under the old name an undo would take the one under the new name, put back before, for it.
void SQLite3MessageFiles::Move(const std::string& oldName, const std::string& newName)
{
    if (oldName == newName)
        return;
    const bool there = m_files.CheckExists(oldName);
    errno = there ? 0 : ENOENT;
    RequireDone(there, "renamed", oldName);
    BackUp({newName});
    Intend({{Change::Renamed, oldName, newName}});
    RequireDone(m_files.ChangeName(oldName, newName), "renamed", oldName);
}

/// The intent's first line of a change tells whether there is something to finish, so what is to be deleted comes first.
void SQLite3MessageFiles::Remove(const std::vector<std::string>& names)
{
    if (!m_changes.empty() && m_changes.front().kind != Change::Doomed)
        return BackUp(names);
    RequireDeletable();
    std::vector<Change> changes;
    for (const std::string& name : std::set<std::string>(names.begin(), names.end())) // two rows may have one file
        changes.push_back({Change::Doomed, name, ""});
    Intend(std::move(changes));
}

/// Behind the commit nothing could be taken back.
void SQLite3MessageFiles::RequireDeletable() const
{
    RequireDone(faccessat(AT_FDCWD, m_files.GetQueuePath().c_str(), W_OK | X_OK, AT_EACCESS) == 0, "deleted", "*");
}

/// An emptied queue needs no backups: a row that comes back without its file goes with the next read.
void SQLite3MessageFiles::RemoveAll() { RequireDone(m_files.EmptyQueue(), "deleted", "*"); }

void SQLite3MessageFiles::BackUp(const std::vector<std::string>& names)
{
    std::vector<Change> changes;
    const std::set<std::string> files(names.begin(), names.end()); // two rows may have one file
    Start();
    for (const std::string& name : files)
        if (m_files.CheckExists(name))
            changes.push_back({Change::BackedUp, name,
                               std::string(kBackups) + "/" + std::to_string(m_lNumber) + "-" +
                                   std::to_string(m_changes.size() + changes.size())});
    if (changes.empty())
        return;
    Intend(changes);
    for (const Change& change : changes)
        RequireDone(PutAside(change.from, change.to), "put aside", change.from);
}

/// The directory of the backups is made when it is missing.
bool SQLite3MessageFiles::PutAside(const std::string& name, const std::string& backup) const
{
    const auto moved = [&] { return rename(m_files.PathOf(name).c_str(), m_files.PathOf(backup).c_str()) == 0; };
    if (moved())
        return true;
    return errno == ENOENT && mkdir(m_files.PathOf(kBackups).c_str(), 0777) == 0 && moved();
}

/// Gives the transaction its number.
void SQLite3MessageFiles::Start()
{
    if (m_bStarted)
        return;
    m_intent.Empty();
    m_lNumber = NumberAfter(m_store->SelectNumber("PRAGMA user_version"));
    m_store->Update("PRAGMA user_version={}", m_lNumber);
    m_bStarted = true;
}

/// Tells changes before they come.
void SQLite3MessageFiles::Intend(std::vector<Change> changes)
{
    Start();
    std::string text = m_changes.empty() ? std::to_string(m_lNumber) + "\n" : "";
    for (const Change& change : changes)
        text += std::string(1, change.kind) + "\t" + change.from + "\t" + change.to + "\n";
    m_intent.Append(text);
    m_changes.insert(m_changes.end(), std::make_move_iterator(changes.begin()), std::make_move_iterator(changes.end()));
}

/// The intent tells what another process began that died, or what was committed where turns are not kept apart.
void SQLite3MessageFiles::SettleLeftovers()
{
    const long committed = m_store->SelectNumber("PRAGMA user_version");
    const SQLite3QueueIntent::Head begun = m_intent.ReadHead();
    if (begun.number == NumberAfter(committed))
        UndoLeftovers();
    else if (begun.number == committed && begun.letter == Change::Doomed)
        FinishLeftovers();
}

/// Takes over the changes that the intent tells of.
void SQLite3MessageFiles::ReadLeftovers()
{
    std::istringstream lines(m_intent.Read());
    std::string line;
    std::getline(lines, line); // the number
    while (std::getline(lines, line)) {
        const std::size_t first = line.find('\t');
        const std::size_t second = line.find('\t', first + 1);
        if (first != 1 || second == std::string::npos)
            continue;
        const Change change{static_cast<Change::Kind>(line[0]), line.substr(2, second - 2), line.substr(second + 1)};
        if (IsOwn(change)) // a damaged line must not turn against a message
            m_changes.push_back(change);
    }
}

/// Puts right what a process left half done that died before it could commit.
void SQLite3MessageFiles::UndoLeftovers()
{
    ReadLeftovers();
    UndoChanges();
    m_intent.Empty();
    m_changes.clear();
}

/// Deletes what a process had no time to delete that died behind its commit.
void SQLite3MessageFiles::FinishLeftovers()
{
    ReadLeftovers();
    for (const Change& change : m_changes)
        if (change.kind == Change::Doomed &&
            m_store->Select("SELECT id FROM {} WHERE msg_name={}", m_table, change.from)->GetReturnedRowsCount() == 0)
            unlink(m_files.PathOf(change.from).c_str()); // one that stays is nobody's and harms nobody
    m_intent.Empty();
    m_changes.clear();
}

bool SQLite3MessageFiles::IsOwn(const Change& change)
{
    static const std::string backups = std::string(kBackups) + "/";
    if (!IsMessageName(change.from))
        return false;
    switch (change.kind) {
    case Change::Written:
    case Change::Doomed: return change.to.empty();
    case Change::Renamed: return IsMessageName(change.to);
    case Change::BackedUp: return change.to.rfind(backups, 0) == 0 && IsFileName(change.to.substr(backups.size()));
    }
    return false;
}

/// A file that was written in the place of one that was put aside goes when that one comes back. Deleting it would be
/// wrong the second time, when the old one stands there again.
void SQLite3MessageFiles::UndoChanges()
{
    for (auto change = m_changes.rbegin(); change != m_changes.rend(); ++change) {
        const std::string from = m_files.PathOf(change->from);
        const std::string to = m_files.PathOf(change->to);
        const bool replaced = std::any_of(change, m_changes.rend(), [&](const Change& earlier) {
            return earlier.kind == Change::BackedUp && earlier.from == change->from;
        });
        if (change->kind == Change::Doomed)
            continue;
        if (change->kind == Change::Written)
            RequireDone(replaced || unlink(from.c_str()) == 0 || errno == ENOENT, "deleted", change->from);
        else if (change->kind == Change::BackedUp || !m_files.CheckExists(change->from))
            RequireDone(rename(to.c_str(), from.c_str()) == 0 || errno == ENOENT, "renamed back", change->from);
    }
}

/// The lock is held, so all backups are of transactions that are over.
void SQLite3MessageFiles::DeleteLeftoverBackups() const
{
    namespace fs = std::filesystem;
    std::error_code failed;
    std::error_code ignored;
    for (fs::directory_iterator entry(m_files.PathOf(kBackups), failed), end; !failed && entry != end;
         entry.increment(failed))
        fs::remove(entry->path(), ignored);
}

} // namespace vk
