#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "VKField.h"

class VKSQLite3Database;
class VKSQLite3ResultSet;

/// The last known state of each job, one row a job, in the file "report_msg_status.sdb": clients ask it about their
/// messages without touching the reports. Always a file, whatever stores the entities, and never waited for the disk,
/// since the reports can fill it anew.
///
/// Operations never throw: false means that nothing was stored or found, and GetLastError tells why. Every one but
/// GetStatusByJobID is a transaction of its own. One object serves one thread; any number of threads and processes may
/// use the file, each through an object of its own.
///
/// Job ids are made by the system and stand in statements as they are; one with a quote in it is refused, except that
/// Add and Update store any.
class VKMsgStatusManager
{
public:
    enum MsgStatus : int {
        MsgStatusNone = 0,
        MsgStatusNew = 1,
        MsgStatusAttempt = 2,
        MsgStatusRead = 3,
        MsgStatusFiltered = 4,
        MsgStatusFailed = 5,
        MsgStatusCompleted = 6,
        MsgStatusReplied = 7,
        MsgStatusRejected = 8,
        MsgStatusConfirmed = 9
    };

    struct VKMessageStatusData
    {
        unsigned long message_id = 0; ///< the row
        std::string job_id;
        long time_stamp = 0; ///< seconds since the epoch
        std::int32_t sender_id = 0;
        std::string comments;
        long context = 0; ///< the writer's own
        MsgStatus status = MsgStatusNone;
        std::string arguments;
    };

    VKMsgStatusManager();
    ~VKMsgStatusManager();
    VKMsgStatusManager(const VKMsgStatusManager&) = delete;
    VKMsgStatusManager& operator=(const VKMsgStatusManager&) = delete;

    /// Opens the file in the installation's report directory, or beside the entities' files when it has none; makes it
    /// when it is missing. Once, before anything else.
    bool Initialize();

    /// Stores a new row, whatever is there of the job; its id is set in the data.
    bool Add(VKMessageStatusData& data);
    /// Stores the row with the data's message id, true also when there is none.
    bool Update(const VKMessageStatusData& data);
    /// Keeps one row a job: stores the data unless what is stored is newer or final (Failed, Confirmed, Rejected,
    /// Filtered; Replied but for Replied, Rejected and Confirmed). True also when nothing was to be changed; the
    /// message id is the row's in any case.
    bool AddOrUpdateByJobID(VKMessageStatusData& data);
    /// The same for each entry in order, all or none.
    bool AddOrUpdateListByJobID(std::vector<VKMessageStatusData>& list);
    bool Delete(const std::string& jobId);
    /// Deletes every row older than this time, in seconds since the epoch.
    bool CleanupOldMsgs(long time);

    /// False when there is no row of the job; the output is left alone then.
    bool GetByJobID(const std::string& jobId, VKMessageStatusData& data);
    bool GetStatusByJobID(const std::string& jobId, MsgStatus& status);
    /// Appends an entry for each row that a query of all columns gives.
    bool GetFromDB(const std::string& query, std::vector<VKMessageStatusData>& list);
    /// Appends the rows of a sender (0 or less: any) among the jobs (null or empty: any). In spite of the name their
    /// status does not matter, which is meant.
    bool GetConfNRejectedMsgs(std::vector<VKMessageStatusData>& list, int senderId,
                              const std::vector<std::string>* jobIds);
    /// Appends the rows of a sender, in a status (MsgStatusNone: any), among the jobs (null: any). A list without jobs
    /// is refused unless there is another condition.
    bool Get(std::vector<VKMessageStatusData>& list, int senderId, MsgStatus status,
             const std::vector<std::string>* jobIds);
    /// Reads a row of all columns by position. False when there is no such row.
    bool FillStructFromResultSet(VKMessageStatusData& data, VKSQLite3ResultSet& result, int row);

    /// "None", "New", "Attempt", ...; "Unknown Status" for a number that is no status.
    static std::string GetStatusTextFromID(int status);

    /// Why the last operation that failed did; empty when a row was only not there.
    const std::string& GetLastError() const { return m_strLastError; }

private:
    template <class Body> bool Guarded(Body&& body);
    template <class Body> bool Opened(Body&& body);
    template <class Body> bool Exclusive(Body&& body);
    void Change(const std::string& statement);
    unsigned long Insert(const VKMessageStatusData& data);
    unsigned long AddOrUpdate(const VKMessageStatusData& data);
    bool IsThere(const VKSQLite3ResultSet& result);

    std::unique_ptr<VKSQLite3Database> m_pDatabase; ///< null until Initialize has succeeded
    std::string m_strPath;
    std::string m_strLastError;
};

namespace vk {

/// The status that a report's word stands for, letters of either case; MsgStatusNone for every other word.
VKMsgStatusManager::MsgStatus MsgStatusOfReport(const std::string& word);

/// The statuses' names; in capitals they are the words of reports.
inline constexpr CodeText<int> kMsgStatusTexts[] = {
    {VKMsgStatusManager::MsgStatusNone, "None"},           {VKMsgStatusManager::MsgStatusNew, "New"},
    {VKMsgStatusManager::MsgStatusAttempt, "Attempt"},     {VKMsgStatusManager::MsgStatusRead, "Read"},
    {VKMsgStatusManager::MsgStatusFiltered, "Filtered"},   {VKMsgStatusManager::MsgStatusFailed, "Failed"},
    {VKMsgStatusManager::MsgStatusCompleted, "Completed"}, {VKMsgStatusManager::MsgStatusReplied, "Replied"},
    {VKMsgStatusManager::MsgStatusRejected, "Rejected"},   {VKMsgStatusManager::MsgStatusConfirmed, "Confirmed"}};

/// The table's columns in order.
inline constexpr auto kMsgStatusFields =
    Fields(Field<&VKMsgStatusManager::VKMessageStatusData::message_id>("msg_id"),
           Field<&VKMsgStatusManager::VKMessageStatusData::job_id>("job_id"),
           Field<&VKMsgStatusManager::VKMessageStatusData::time_stamp>("time_stamp"),
           Field<&VKMsgStatusManager::VKMessageStatusData::sender_id>("sender_id"),
           Field<&VKMsgStatusManager::VKMessageStatusData::comments>("comments"),
           Field<&VKMsgStatusManager::VKMessageStatusData::context>("context"),
           Field<&VKMsgStatusManager::VKMessageStatusData::status>("status"),
           Field<&VKMsgStatusManager::VKMessageStatusData::arguments>("arguments"));

} // namespace vk
