#include "VKSQLite3MessageFiles.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <limits>
#include <sstream>
#include <sys/file.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

#include "VKDBexception.h"
#include "VKSqlStore.h"

namespace vk {

namespace {

constexpr const char* kIntentFile = "queue_metabase.sdb-intent";
constexpr const char* kBackup = "queue_metabase.sdb-undo-";

/// user_version is a signed number of 32 bits.
long NumberAfter(long number) { return number >= std::numeric_limits<int>::max() ? 1 : number + 1; }

} // namespace

SQLite3MessageFiles::SQLite3MessageFiles(VKMsgQueueFileOperations files) : m_files(std::move(files)) {}

SQLite3MessageFiles::~SQLite3MessageFiles()
{
    if (m_iIntent >= 0)
        close(m_iIntent);
}

void SQLite3MessageFiles::RequireDone(bool done, const char* what, const std::string& name) const
{
    if (!done)
        throw VKDBexception(DbError::General, __FILE__, __LINE__,
                            std::string("The message file [") + m_files.PathOf(name) + "] cannot be " + what + ".",
                            std::generic_category().message(errno));
}

/// A place that knows no such locks, or whose lock is broken, leaves all waiting to the database.
void SQLite3MessageFiles::Enter()
{
    OpenIntent();
    while (flock(m_iIntent, LOCK_EX) != 0 && errno == EINTR) {
    }
}

void SQLite3MessageFiles::Leave() noexcept { flock(m_iIntent, LOCK_UN); }

/// Every transaction of the file database takes the write lock.
void SQLite3MessageFiles::Begin(SqlStore& store, const TableName& table, TransactionLock)
{
    m_store = &store;
    m_table = table;
    m_bStarted = false;
    ReadIntent();
    const long committed = store.SelectNumber("PRAGMA user_version");
    if (!m_changes.empty()) {
        if (m_lNumber == NumberAfter(committed))
            UndoChanges();
        DeleteBackups();
        RequireDone(ftruncate(m_iIntent, 0) == 0, "emptied", kIntentFile);
    }
    m_changes.clear();
    m_lNumber = NumberAfter(committed);
}

void SQLite3MessageFiles::Undo() noexcept
{
    try {
        UndoChanges();
    } catch (...) { // the intent still tells it: the next transaction tries again
    }
}

void SQLite3MessageFiles::Committed() noexcept
{
    try {
        DeleteBackups();
    } catch (...) { // they go by the intent
    }
    m_changes.clear();
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
    BackUp(name);
    Intend({Change::Written, name, ""});
    RequireDone(m_files.WriteMsgFileContent(name, &content), "written", name);
}

void SQLite3MessageFiles::Move(const std::string& oldName, const std::string& newName)
{
    if (oldName == newName)
        return;
    BackUp(newName);
    Intend({Change::Renamed, oldName, newName});
    RequireDone(m_files.ChangeName(oldName, newName), "renamed", oldName);
}

void SQLite3MessageFiles::Remove(const std::string& name) { BackUp(name); }

/// An emptied queue needs no backups: a row that comes back without its file goes with the next read.
void SQLite3MessageFiles::RemoveAll() { RequireDone(m_files.EmptyQueue(), "deleted", "*"); }

void SQLite3MessageFiles::BackUp(const std::string& name)
{
    if (!m_files.CheckExists(name))
        return;
    const std::string backup = kBackup + std::to_string(m_lNumber) + "-" + std::to_string(m_changes.size());
    Intend({Change::BackedUp, name, backup});
    RequireDone(m_files.ChangeName(name, backup), "put aside", name);
}

void SQLite3MessageFiles::Intend(Change change)
{
    if (!m_bStarted) {
        RequireDone(ftruncate(m_iIntent, 0) == 0, "emptied", kIntentFile);
        Append(std::to_string(m_lNumber) + "\n");
        m_store->Update("PRAGMA user_version={}", m_lNumber);
        m_bStarted = true;
    }
    Append(std::string(1, change.kind) + "\t" + change.from + "\t" + change.to + "\n");
    m_changes.push_back(std::move(change));
}

void SQLite3MessageFiles::Append(const std::string& line)
{
    std::size_t written = 0;
    while (written < line.size()) {
        const ssize_t count = write(m_iIntent, line.data() + written, line.size() - written);
        RequireDone(count > 0 || errno == EINTR, "written", kIntentFile);
        written += count > 0 ? static_cast<std::size_t>(count) : 0;
    }
}

/// A line without its end was being written when the process died: its change never came.
void SQLite3MessageFiles::ReadIntent()
{
    m_changes.clear();
    struct stat facts{};
    RequireDone(fstat(m_iIntent, &facts) == 0, "read", kIntentFile);
    std::string text(static_cast<std::size_t>(facts.st_size), '\0');
    std::size_t read = 0;
    while (read < text.size()) {
        const ssize_t count =
            pread(m_iIntent, text.data() + read, text.size() - read, static_cast<off_t>(read));
        RequireDone(count > 0 || errno == EINTR, "read", kIntentFile);
        read += count > 0 ? static_cast<std::size_t>(count) : 0;
    }
    text.resize(text.rfind('\n') + 1);

    std::istringstream lines(text);
    std::string line;
    m_lNumber = std::getline(lines, line) ? std::atol(line.c_str()) : 0;
    while (std::getline(lines, line)) {
        const std::size_t first = line.find('\t');
        const std::size_t second = line.find('\t', first + 1);
        if (first == 1 && second != std::string::npos)
            m_changes.push_back({static_cast<Change::Kind>(line[0]), line.substr(2, second - 2),
                                 line.substr(second + 1)});
    }
}

void SQLite3MessageFiles::UndoChanges()
{
    for (auto change = m_changes.rbegin(); change != m_changes.rend(); ++change) {
        const std::string from = m_files.PathOf(change->from);
        const std::string to = m_files.PathOf(change->to);
        if (change->kind == Change::Written)
            RequireDone(unlink(from.c_str()) == 0 || errno == ENOENT, "deleted", change->from);
        else if (change->kind == Change::BackedUp || !m_files.CheckExists(change->from))
            RequireDone(rename(to.c_str(), from.c_str()) == 0 || errno == ENOENT, "renamed back", change->from);
    }
}

void SQLite3MessageFiles::DeleteBackups()
{
    for (const Change& change : m_changes)
        if (change.kind == Change::BackedUp)
            RequireDone(unlink(m_files.PathOf(change.to).c_str()) == 0 || errno == ENOENT, "deleted", change.to);
}

void SQLite3MessageFiles::OpenIntent()
{
    if (m_iIntent < 0)
        m_iIntent = open(m_files.PathOf(kIntentFile).c_str(), O_RDWR | O_CREAT | O_APPEND | O_CLOEXEC, 0666);
    RequireDone(m_iIntent >= 0, "opened", kIntentFile);
}

} // namespace vk
