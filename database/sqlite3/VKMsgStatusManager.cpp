#include "VKMsgStatusManager.h"

#include "VKConfiguration.h"
#include "VKDBexception.h"
#include "VKSQLite3Database.h"
#include "VKSQLite3Dialect.h"
#include "VKSqlText.h"
#include "VKSqlTransaction.h"
#include "VKTableRow.h"
#include "VKioFile.h"

namespace {

using Manager = VKMsgStatusManager;

constexpr const char* kFile = "report_msg_status.sdb";
constexpr const char* kTable = "report_msg_status";
constexpr const char* kColumns = "msg_id INTEGER PRIMARY KEY AUTOINCREMENT , job_id VARCHAR(64) , time_stamp INTEGER , "
                                 "sender_id INTEGER , comments TEXT , context INTEGER , status INTEGER , "
                                 "arguments TEXT";
constexpr const char* kIndex = "CREATE INDEX IF NOT EXISTS 'ix_job_id' ON 'report_msg_status' ('job_id' ASC);";
constexpr int kSynchronousOff = 0;

/// Thrown inside a transaction when the store refuses without an error of its own: rolls back and makes the operation
/// false.
constexpr int kRefused = 1;

template <class... Values> std::string Statement(std::string_view pattern, const Values&... values)
{
    return vk::SqlText(vk::SQLite3Dialect::Get(), pattern, values...);
}

/// Job ids from clients may come here: what would end the text must not reach the statement.
const std::string& Plain(const std::string& jobId)
{
    if (jobId.find_first_of(std::string_view("'\0", 2)) != std::string::npos)
        throw VKDBexception(vk::DbError::General, __FILE__, __LINE__, "A job id never holds a quote.");
    return jobId;
}

std::string AmongJobs(const std::vector<std::string>& jobIds)
{
    std::string ids;
    for (const std::string& jobId : jobIds)
        ids += (ids.empty() ? "'" : ",'") + Plain(jobId) + "'";
    return " job_id IN (" + ids + ")";
}

/// Whether a stored status gives way to a new one that is not older.
bool GivesWay(int stored, Manager::MsgStatus next)
{
    switch (stored) {
    case Manager::MsgStatusFailed:
    case Manager::MsgStatusConfirmed:
    case Manager::MsgStatusRejected:
    case Manager::MsgStatusFiltered:
        return false;
    case Manager::MsgStatusReplied:
        return next == Manager::MsgStatusReplied || next == Manager::MsgStatusRejected ||
               next == Manager::MsgStatusConfirmed;
    default:
        return true;
    }
}

std::string Directory(VKConfiguration& configuration)
{
    const VK_DIRECTORY_PATH* const directories = configuration.getDirectory(false);
    return directories != nullptr && directories->report_dir[0] != '\0' ? directories->report_dir
                                                                        : configuration.getConfDirectory(false);
}

} // namespace

VKMsgStatusManager::VKMsgStatusManager() = default;
VKMsgStatusManager::~VKMsgStatusManager() = default;

/// The border that no exception passes.
template <class Body> bool VKMsgStatusManager::Guarded(Body&& body)
{
    m_strLastError = "The status store [" + m_strPath + "] refused the operation: it is in use, or not open.";
    try {
        return body();
    } catch (const VKDBexception& failure) {
        m_strLastError = failure.GetSysMsg().empty() ? failure.GetMsg() : failure.GetMsg() + ": " + failure.GetSysMsg();
    } catch (const std::exception& failure) {
        m_strLastError = failure.what();
    } catch (int) { // kRefused
    }
    return false;
}

template <class Body> bool VKMsgStatusManager::Opened(Body&& body) { return m_pDatabase != nullptr && Guarded(body); }

template <class Body> bool VKMsgStatusManager::Exclusive(Body&& body)
{
    return Opened([&] {
        vk::Transaction transaction(*m_pDatabase, vk::TransactionLock::Exclusive);
        if (!transaction.IsOpen())
            return false;
        body();
        return transaction.Commit();
    });
}

bool VKMsgStatusManager::Initialize()
{
    return Guarded([&] {
        VKConfiguration* const configuration = VKConfiguration::getVKConfiguration();
        if (configuration == nullptr)
            return false;
        m_strPath = VKioFile::CreatePath(Directory(*configuration), kFile);
        const bool existed = VKioFile::IsExisting(m_strPath);
        auto database = std::make_unique<VKSQLite3Database>(
            m_strPath, std::map<std::string, std::string>{{kTable, kColumns}}, false);
        VKSQLite3ResultSet result;
        if (!database->IsReady() || (!existed && !database->ExecuteUpdateQuery(kIndex, result)) ||
            !database->SetSynchronousMode(kSynchronousOff))
            return false;
        m_pDatabase = std::move(database);
        return true;
    });
}

void VKMsgStatusManager::Change(const std::string& statement)
{
    VKSQLite3ResultSet result;
    if (!m_pDatabase->ExecuteUpdateQuery(statement, result))
        throw kRefused;
}

unsigned long VKMsgStatusManager::Insert(const VKMessageStatusData& data)
{
    VKSQLite3ResultSet result;
    unsigned long id = 0;
    const std::string statement = Statement(
        "INSERT INTO report_msg_status (`job_id`, `time_stamp`, `sender_id`, `comments`, `context`, "
        "`status`, `arguments`) VALUES ({},{},{},{},{},{},{});",
        data.job_id, data.time_stamp, data.sender_id, data.comments, data.context, data.status, data.arguments);
    if (!m_pDatabase->ExecuteInsertQuery(statement, result, id) || id == 0)
        throw kRefused;
    return id;
}

bool VKMsgStatusManager::Add(VKMessageStatusData& data)
{
    unsigned long id = 0;
    if (!Exclusive([&] { id = Insert(data); }))
        return false;
    data.message_id = id;
    return true;
}

namespace {

std::string UpdateOf(unsigned long id, const Manager::VKMessageStatusData& data)
{
    return Statement("UPDATE report_msg_status SET job_id={},time_stamp={},sender_id={},comments={},context={},"
                     "status={},arguments={} WHERE msg_id={};",
                     data.job_id, data.time_stamp, data.sender_id, data.comments, data.context, data.status,
                     data.arguments, id);
}

} // namespace

bool VKMsgStatusManager::Update(const VKMessageStatusData& data)
{
    return Exclusive([&] { Change(UpdateOf(data.message_id, data)); });
}

/// Gives back the job's row. Reports may arrive out of order: what came later in the job's life stays.
unsigned long VKMsgStatusManager::AddOrUpdate(const VKMessageStatusData& data)
{
    VKSQLite3ResultSet stored;
    if (!m_pDatabase->ExecuteSelectQuery("SELECT msg_id, status, time_stamp FROM report_msg_status WHERE job_id='" +
                                             Plain(data.job_id) + "';",
                                         stored))
        throw kRefused;
    const unsigned long id = stored[0][0].GetValueULong();
    if (id == 0)
        return Insert(data);
    if (stored[0][2].GetValueLong() <= data.time_stamp && GivesWay(stored[0][1].GetValueInt(), data.status))
        Change(UpdateOf(id, data));
    return id;
}

bool VKMsgStatusManager::AddOrUpdateByJobID(VKMessageStatusData& data)
{
    unsigned long id = 0;
    if (!Exclusive([&] { id = AddOrUpdate(data); }))
        return false;
    data.message_id = id;
    return true;
}

bool VKMsgStatusManager::AddOrUpdateListByJobID(std::vector<VKMessageStatusData>& list)
{
    std::vector<unsigned long> ids;
    if (!Exclusive([&] {
            ids.reserve(list.size());
            for (const VKMessageStatusData& data : list)
                ids.push_back(AddOrUpdate(data));
        }))
        return false;
    for (std::size_t i = 0; i < list.size(); ++i)
        list[i].message_id = ids[i];
    return true;
}

bool VKMsgStatusManager::Delete(const std::string& jobId)
{
    return Exclusive([&] { Change("DELETE FROM report_msg_status WHERE job_id = '" + Plain(jobId) + "';"); });
}

bool VKMsgStatusManager::CleanupOldMsgs(long time)
{
    return Exclusive([&] { Change(Statement("DELETE FROM report_msg_status WHERE time_stamp < {};", time)); });
}

/// A row that is only not there is no failure that could be told.
bool VKMsgStatusManager::IsThere(const VKSQLite3ResultSet& result)
{
    if (result.GetReturnedRowsCount() < 1)
        m_strLastError.clear();
    return result.GetReturnedRowsCount() > 0;
}

bool VKMsgStatusManager::GetByJobID(const std::string& jobId, VKMessageStatusData& data)
{
    return Opened([&] {
        VKSQLite3ResultSet result;
        return m_pDatabase->SelectQueryTransaction(
                   "SELECT * FROM report_msg_status WHERE job_id='" + Plain(jobId) + "';", result) &&
               IsThere(result) && FillStructFromResultSet(data, result, 0);
    });
}

bool VKMsgStatusManager::GetStatusByJobID(const std::string& jobId, MsgStatus& status)
{
    return Opened([&] {
        VKSQLite3ResultSet result;
        if (!m_pDatabase->ExecuteSelectQuery(
                "SELECT status FROM report_msg_status WHERE job_id='" + Plain(jobId) + "';", result) ||
            !IsThere(result))
            return false;
        status = static_cast<MsgStatus>(result[0][0].GetValueInt());
        return true;
    });
}

bool VKMsgStatusManager::GetFromDB(const std::string& query, std::vector<VKMessageStatusData>& list)
{
    return Opened([&] {
        VKSQLite3ResultSet result;
        if (!m_pDatabase->SelectQueryTransaction(query, result))
            return false;
        for (int row = 0; row < result.GetReturnedRowsCount(); ++row)
            FillStructFromResultSet(list.emplace_back(), result, row);
        return true;
    });
}

bool VKMsgStatusManager::GetConfNRejectedMsgs(std::vector<VKMessageStatusData>& list, int senderId,
                                              const std::vector<std::string>* jobIds)
{
    return Guarded([&] {
        std::string query = "SELECT * FROM report_msg_status ";
        if (senderId > 0)
            query += " WHERE sender_id = " + std::to_string(senderId);
        if (jobIds != nullptr && !jobIds->empty())
            query += (senderId > 0 ? " AND " : " WHERE ") + AmongJobs(*jobIds);
        return GetFromDB(query, list);
    });
}

bool VKMsgStatusManager::Get(std::vector<VKMessageStatusData>& list, int senderId, MsgStatus status,
                             const std::vector<std::string>* jobIds)
{
    return Guarded([&] {
        std::string query = "SELECT * FROM report_msg_status ";
        if (senderId > 0 || status != MsgStatusNone || jobIds != nullptr)
            query += " WHERE "; // stays bare for an empty list alone, and the statement fails; this is meant
        bool conditions = false;
        const auto add = [&](const std::string& condition) {
            query += (conditions ? " AND " : " ") + condition;
            conditions = true;
        };
        if (senderId > 0)
            add("sender_id = " + std::to_string(senderId));
        if (status != MsgStatusNone)
            add("status = " + std::to_string(status));
        if (jobIds != nullptr && !jobIds->empty())
            add(AmongJobs(*jobIds));
        return GetFromDB(query, list);
    });
}

bool VKMsgStatusManager::FillStructFromResultSet(VKMessageStatusData& data, VKSQLite3ResultSet& result, int row)
{
    if (row < 0 || row >= result.GetReturnedRowsCount())
        return false;
    int column = 0;
    vk::ForEachField(vk::kMsgStatusFields,
                     [&](const auto& field) { vk::ReadValue(field.of(data), result[row][column++], field.name); });
    return true;
}

std::string VKMsgStatusManager::GetStatusTextFromID(int status)
{
    return vk::TextOfCode(vk::kMsgStatusTexts, status, "Unknown Status");
}

namespace vk {

VKMsgStatusManager::MsgStatus MsgStatusOfReport(const std::string& word)
{
    return static_cast<VKMsgStatusManager::MsgStatus>(
        CodeOfText(kMsgStatusTexts, word, static_cast<int>(VKMsgStatusManager::MsgStatusNone), Case::Ignored));
}

} // namespace vk
