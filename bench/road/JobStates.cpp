#include "Measurements.h"
#include "Statistics.h"
#include "TempDir.h"
#include "VKConfiguration.h"
#include "VKMsgStatusManager.h"

#include <sqlite3.h>

#include <memory>
#include <stdexcept>
#include <vector>

namespace {

constexpr int kEntries = 1000;

std::string JobOf(int round, int entry)
{
    return "20240101120000_" + std::to_string(round) + "_" + std::to_string(entry);
}

/// A state of a job that each of the rounds brings: even rounds new jobs, odd ones the next state of the round before.
VKMsgStatusManager::VKMessageStatusData Entry(int round, int entry)
{
    VKMsgStatusManager::VKMessageStatusData data;
    data.job_id = JobOf(round & ~1, entry);
    data.time_stamp = 1700000000L + round;
    data.sender_id = entry % 50;
    data.comments = "pager-" + std::to_string(entry) + " said it's on its way";
    data.context = 3;
    data.status = (round & 1) != 0 ? VKMsgStatusManager::MsgStatusRead : VKMsgStatusManager::MsgStatusNew;
    return data;
}

/// The same statements, made beforehand, straight into the library in one transaction.
class BareStore
{
public:
    explicit BareStore(const std::string& path)
    {
        sqlite3* handle = nullptr;
        if (sqlite3_open(path.c_str(), &handle) != SQLITE_OK)
            throw std::runtime_error("sqlite3 cannot open " + path);
        m_handle.reset(handle);
        Run("PRAGMA synchronous=0;");
        Run("CREATE TABLE report_msg_status (msg_id INTEGER PRIMARY KEY AUTOINCREMENT , job_id VARCHAR(64) , "
            "time_stamp "
            "INTEGER , sender_id INTEGER , comments TEXT , context INTEGER , status INTEGER , arguments TEXT);");
        Run("CREATE INDEX ix_job_id ON report_msg_status (job_id ASC);");
    }

    void Prepare(int round)
    {
        m_statements.clear();
        for (int i = 0; i < kEntries; ++i) {
            const auto data = Entry(round, i);
            const std::string comments = "pager-" + std::to_string(i) + " said it''s on its way";
            const std::string sender = std::to_string(data.sender_id);
            const std::string time = std::to_string(data.time_stamp);
            const std::string status = std::to_string(data.status);
            m_statements.push_back("SELECT msg_id, status, time_stamp FROM report_msg_status WHERE job_id='" +
                                   data.job_id + "';");
            if ((round & 1) == 0)
                m_statements.push_back(
                    "INSERT INTO report_msg_status (`job_id`, `time_stamp`, `sender_id`, `comments`, "
                    "`context`, `status`, `arguments`) VALUES ('" +
                    data.job_id + "'," + time + "," + sender + ",'" + comments + "',3," + status + ",'');");
            else
                m_statements.push_back(
                    "UPDATE report_msg_status SET job_id='" + data.job_id + "',time_stamp=" + time +
                    ",sender_id=" + sender + ",comments='" + comments + "',context=3,status=" + status +
                    ",arguments='' WHERE msg_id=" + std::to_string(round / 2 * kEntries + i + 1) + ";");
        }
    }

    void Store()
    {
        Run("BEGIN EXCLUSIVE TRANSACTION ;");
        for (const std::string& statement : m_statements)
            Run(statement.c_str());
        Run("COMMIT TRANSACTION ;");
    }

private:
    struct Close
    {
        void operator()(sqlite3* handle) const { sqlite3_close(handle); }
    };

    void Run(const char* statement)
    {
        if (sqlite3_exec(m_handle.get(), statement, nullptr, nullptr, nullptr) != SQLITE_OK)
            throw std::runtime_error(sqlite3_errmsg(m_handle.get()));
    }

    std::unique_ptr<sqlite3, Close> m_handle;
    std::vector<std::string> m_statements;
};

} // namespace

Figure StatusListOfThousand(Stage&)
{
    constexpr int kRounds = 40;
    const TempDir dir;
    dir.Write("config/dir", "report_dir:\t\t" + dir.Path().string() + "\n");
    VKConfiguration::getVKConfiguration()->setConfDirectory(dir / "config");
    VKConfiguration::getVKConfiguration()->loadPrimaryConfiguration(true);
    VKMsgStatusManager store;
    if (!store.Initialize())
        throw std::runtime_error(store.GetLastError());
    BareStore bareStore(dir / "bare.sdb");
    std::vector<double> ours;
    std::vector<double> bare;
    for (int round = 0; round < kRounds; ++round) {
        std::vector<VKMsgStatusManager::VKMessageStatusData> list;
        for (int i = 0; i < kEntries; ++i)
            list.push_back(Entry(round, i));
        bareStore.Prepare(round);
        const auto start = Clock::now();
        if (!store.AddOrUpdateListByJobID(list))
            throw std::runtime_error(store.GetLastError());
        const auto between = Clock::now();
        bareStore.Store();
        bare.push_back(kEntries / Seconds(Clock::now() - between));
        ours.push_back(kEntries / Seconds(between - start));
    }
    return {Median(ours), Median(bare), "bare: the same statements in sqlite3, made beforehand"};
}
