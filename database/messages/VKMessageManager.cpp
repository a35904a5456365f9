#include "VKMessageManager.h"

#include "VKDBexception.h"
#include "VKMessageConstantsReader.h"
#include "VKSQLite3Database.h"
#include "VKSqlTransaction.h"
#include "VKioFile.h"
#include "VKprintf.h"
#include "VKstringReplace.h"

#include <exception>
#include <mutex>
#include <stdexcept>

namespace {

constexpr const char* kFile = "messages.sdb";
constexpr const char* kUsualDirectory = "/usr/local/vardock/config";
constexpr VKSQLite3TableDesc kTables[] = {{"messages", "msg_id INTEGER NOT NULL , language_id INTEGER NOT NULL , "
                                                       "message TEXT NOT NULL , PRIMARY KEY (msg_id, language_id)"}};

std::mutex& Lock()
{
    static std::mutex lock;
    return lock;
}

std::string PathIn(const std::string& kept, const std::string& dir)
{
    return kept.empty() ? VKioFile::CreatePath(dir.empty() ? kUsualDirectory : dir, kFile) : kept;
}

/// A file that is open and locked for reading as long as the object lives.
class LockedFile
{
public:
    explicit LockedFile(const std::string& path) : m_file(path)
    {
        m_file.Open("r");
        m_file.Lock('r', true);
    }
    ~LockedFile() { m_file.Unlock(); }
    LockedFile(const LockedFile&) = delete;
    LockedFile& operator=(const LockedFile&) = delete;

    bool ReadLine(std::string& line) { return m_file.ReadLine(line) > 0; }

private:
    VKioFile m_file;
};

/// Runs one statement; whatever fails is told by this text, with the cause nested in it.
void Run(VKSQLite3Database& database, const std::string& statement, const char* failure)
{
    try {
        VKSQLite3ResultSet result;
        if (database.ExecuteUpdateQuery(statement, result))
            return;
    } catch (const VKDBexception&) {
        std::throw_with_nested(std::logic_error(failure));
    }
    throw std::logic_error(failure);
}

} // namespace

std::unique_ptr<VKMessageManager> VKMessageManager::m_pMsgManager;
std::string VKMessageManager::m_strDBFilePath;

VKMessageManager::VKMessageManager() = default;
VKMessageManager::~VKMessageManager() = default;

VKMessageManager* VKMessageManager::CreateInstance(const std::string& dir)
{
    const std::lock_guard<std::mutex> guard(Lock());
    if (!m_pMsgManager)
        m_strDBFilePath = PathIn(m_strDBFilePath, dir);
    return &Instance();
}

void VKMessageManager::DeleteInstance()
{
    const std::lock_guard<std::mutex> guard(Lock());
    m_pMsgManager.reset();
    m_strDBFilePath.clear();
}

/// Under the lock.
VKMessageManager& VKMessageManager::Instance()
{
    if (!m_pMsgManager)
        m_pMsgManager.reset(new VKMessageManager);
    return *m_pMsgManager;
}

void VKMessageManager::SetLanguage(unsigned long language)
{
    const std::lock_guard<std::mutex> guard(Lock());
    Instance().m_ulLanguage = language;
}

std::string VKMessageManager::GetMessageDBFilePath(const std::string& dir)
{
    const std::lock_guard<std::mutex> guard(Lock());
    return PathIn(m_strDBFilePath, dir);
}

std::string VKMessageManager::GetMsg(unsigned long id)
try {
    const std::lock_guard<std::mutex> guard(Lock());
    return VKioFile::IsExisting(PathIn(m_strDBFilePath, "")) ? Instance().Read(id) : std::string();
} catch (const std::exception&) {
    return {}; // meant: who asks for a text has a failure to tell already
}

void VKMessageManager::BuildMessageDB(const std::string& constantsFile)
{
    const std::lock_guard<std::mutex> guard(Lock());
    Instance().Build(constantsFile);
}

VKSQLite3Database& VKMessageManager::Open()
{
    if (!m_pDatabase || !m_pDatabase->IsReady())
        m_pDatabase = std::make_unique<VKSQLite3Database>(PathIn(m_strDBFilePath, ""), kTables, 1, true);
    return *m_pDatabase;
}

std::string VKMessageManager::Read(unsigned long id)
{
    VKSQLite3ResultSet result;
    const std::string query =
        printfToString("SELECT message FROM messages WHERE msg_id=%lu AND language_id=%lu;", id, m_ulLanguage);
    if (!Open().ExecuteSelectQuery(query, result) || result.GetReturnedRowsCount() == 0)
        return {};
    return result[0][0].GetValueString();
}

void VKMessageManager::Build(const std::string& constantsFile)
{
    if (constantsFile.empty())
        throw std::logic_error("No message constants file specified.");
    if (!VKioFile::IsExisting(constantsFile))
        throw std::logic_error("No message constants file exist at the specified path: [" + constantsFile + "].");
    LockedFile file(constantsFile);
    VKSQLite3Database& database = Open();
    database.CheckNCreateSchema();
    vk::InTransaction(database, vk::TransactionLock::Exclusive, [&] {
        Run(database, "DELETE FROM messages;",
            "Could not flush existing messages from the database. Failed to execute DELETE query.");
        vk::MessageConstantsReader reader;
        for (std::string line; file.ReadLine(line);)
            if (reader.Take(line))
                Store(reader.Get().id, reader.Get().text);
        if (reader.IsInText())
            throw std::logic_error("The text of [" + reader.Get().name + "] has no end.");
    });
}

void VKMessageManager::Store(unsigned long id, const std::string& text)
{
    const std::string message = VKSQLite3Database::PreprocessSqlStringCopy(VKstringEscapePrintfString(text), 0);
    Run(*m_pDatabase,
        "INSERT INTO messages (msg_id, language_id, message) VALUES (" + std::to_string(id) + ", " +
            std::to_string(m_ulLanguage) + ", '" + message + "');",
        "Failed to execute INSERT query");
}
