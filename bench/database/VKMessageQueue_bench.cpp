#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fcntl.h>
#include <memory>
#include <sqlite3.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

#include "TempDir.h"
#include "VKDBiMessageQueue.h"
#include "VKDBsystem.h"
#include "VKRecordText.h"

/// A queue beside the bare library doing the same work: the same rows and indexes, the same durability (no waiting for
/// the disk), one plain file for each message.

namespace {

class Installation
{
public:
    Installation()
    {
        VK_DIRECTORY_PATH paths{};
        vk::SetText(paths.spool_dir, m_root.Path().string(), "path");
        system.Close();
        system.OpenSdb(m_root.Path(), "", &paths, nullptr, 0, nullptr);
    }
    ~Installation() { system.Close(); }
    Installation(const Installation&) = delete;
    Installation& operator=(const Installation&) = delete;

    std::unique_ptr<VKDBiMessageQueue> Open(const std::string& service)
    {
        return std::unique_ptr<VKDBiMessageQueue>(VKDBiMessageQueue::CreateInstance(&system, 1, service));
    }
    sqlite3* OpenBare() const
    {
        sqlite3* handle = nullptr;
        sqlite3_open((m_root / "queue_metabase.sdb").c_str(), &handle);
        sqlite3_exec(handle, "PRAGMA synchronous=0;", nullptr, nullptr, nullptr);
        return handle;
    }
    void WriteBare(const std::string& name) const
    {
        const int file = open((m_root / name).c_str(), O_CREAT | O_WRONLY | O_TRUNC, 0666);
        if (write(file, kBody, sizeof kBody - 1) < 0)
            std::abort();
        close(file);
    }
    void ExistsBare(const char* name) const { benchmark::DoNotOptimize(access((m_root / name).c_str(), F_OK)); }

    static constexpr char kBody[] = "{\"text\":\"Fire in building 7, third floor.\",\"receiverPin\":\"a@example.org\"}";

private:
    const TempDir m_root;
    VKDBsystem system;
};

void Add(VKDBiMessageQueue& queue, const std::string& name)
{
    VK_MESSAGE_CONTENT content;
    vk::SetText(content.header.msg_name, name, "msg_name");
    AddMessageContent(&content, Installation::kBody);
    queue.Add(&content);
    EmptyMessageContent(&content);
}

void queue_add(benchmark::State& state)
{
    Installation installation;
    const auto queue = installation.Open("bench");
    long n = 0;
    for (auto _ : state)
        Add(*queue, "M.0.J" + std::to_string(++n) + ".mxp");
    state.SetItemsProcessed(n);
}

void queue_add_bare(benchmark::State& state)
{
    Installation installation;
    installation.Open("bench").reset();
    sqlite3* const handle = installation.OpenBare();
    long n = 0;
    for (auto _ : state) {
        const std::string name = "M.0.J" + std::to_string(++n) + ".mxp";
        const std::string insert =
            "INSERT INTO queue_metadata (msg_name, msg_status, msg_query_count, msg_job_id, msg_protocol, "
            "last_modify_time, create_time, priority) VALUES ('" +
            name + "', 'M', 0, 'J', 'mxp', 1, 1, 3);";
        sqlite3_exec(handle, "BEGIN EXCLUSIVE;", nullptr, nullptr, nullptr);
        sqlite3_exec(handle, insert.c_str(), nullptr, nullptr, nullptr);
        installation.WriteBare(name);
        sqlite3_exec(handle, "COMMIT;", nullptr, nullptr, nullptr);
    }
    sqlite3_close(handle);
    state.SetItemsProcessed(n);
}

void queue_open(benchmark::State& state)
{
    Installation installation;
    installation.Open("bench").reset();
    for (auto _ : state)
        installation.Open("bench").reset();
}

constexpr int kReady = 100;

/// 100 ready messages, and others whose time has not come.
void FillForPoll(Installation& installation, int rows)
{
    const auto queue = installation.Open("bench");
    for (int i = 0; i < kReady; ++i)
        Add(*queue, "M.0.J" + std::to_string(i) + ".mxp");
    sqlite3* const handle = installation.OpenBare();
    const std::string insert = "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i+1 FROM n WHERE i<" +
                               std::to_string(rows - kReady) +
                               ") INSERT INTO queue_metadata (msg_name, msg_status, msg_query_count, msg_job_id, "
                               "msg_protocol, last_modify_time, create_time, priority, next_query_time) SELECT "
                               "'Q.1.L'||i||'.mxp', 'Q', 1, 'L'||i, 'mxp', 1, 1, 3, 4000000000 FROM n;";
    sqlite3_exec(handle, insert.c_str(), nullptr, nullptr, nullptr);
    sqlite3_close(handle);
}

/// As a messenger polls: whole headers.
void Poll(benchmark::State& state, int rows)
{
    Installation installation;
    FillForPoll(installation, rows);
    const auto queue = installation.Open("bench");
    VK_MESSAGE_HEADER_LIST list;
    for (auto _ : state) {
        queue->GetReadyMsg(&list, true);
        if (list.count != kReady)
            state.SkipWithError("not all that is ready was found");
    }
    EmptyMessageHeaderList(&list);
}

void queue_poll_100k(benchmark::State& state) { Poll(state, 100000); }
void queue_poll_1k(benchmark::State& state) { Poll(state, 1000); }

/// The statement of a poll, which has to find what is ready for whatever reason.
std::string PollStatement()
{
    const std::string now = std::to_string(time(nullptr));
    const std::string hold = std::to_string(time(nullptr) - 1200);
    const std::string wait = std::to_string(time(nullptr) - 1800);
    return "SELECT id, msg_name, last_modify_time, last_paging_queue_id, create_time, priority, sender_name, "
           "receiver_name, rcv_group_name, pin, carrier_name, next_send_time, expiry_time, next_query_time, "
           "casc_delay_mins, schd_days_to_send, schd_time_in_mins, schd_last_send_time, schd_date_to_send FROM "
           "queue_metadata WHERE ((lock_time=0 OR last_lock_owner_svc_name='bench') AND (msg_status IN "
           "('M','D','E','F') OR (msg_status='Q' AND next_query_time<=" +
           now + ") OR (msg_status='R' AND last_lock_owner_svc_name='bench' AND last_modify_time<" + hold +
           ") OR (msg_status='W' AND last_modify_time<" + wait +
           "))) ORDER BY priority ASC, last_modify_time ASC, create_time ASC;";
}

/// Runs it and reads all columns of all rows; takes their ids and names.
template <class Take> void SelectBare(sqlite3* handle, benchmark::State& state, Take&& take)
{
    sqlite3_stmt* statement = nullptr;
    sqlite3_prepare_v2(handle, PollStatement().c_str(), -1, &statement, nullptr);
    int rows = 0;
    while (sqlite3_step(statement) == SQLITE_ROW) {
        ++rows;
        for (int column = 0; column < sqlite3_column_count(statement); ++column)
            if (column == 1 || (column >= 6 && column <= 10))
                benchmark::DoNotOptimize(sqlite3_column_text(statement, column));
            else
                benchmark::DoNotOptimize(sqlite3_column_int64(statement, column));
        take(reinterpret_cast<const char*>(sqlite3_column_text(statement, 0)),
             reinterpret_cast<const char*>(sqlite3_column_text(statement, 1)));
    }
    sqlite3_finalize(statement);
    if (rows != kReady)
        state.SkipWithError("not all that is ready was found");
}

/// The same work: the statement, the test for each file, the lock on each row.
void queue_poll_100k_bare(benchmark::State& state)
{
    Installation installation;
    FillForPoll(installation, 100000);
    sqlite3* const handle = installation.OpenBare();
    for (auto _ : state) {
        sqlite3_exec(handle, "BEGIN EXCLUSIVE;", nullptr, nullptr, nullptr);
        std::string update = "UPDATE queue_metadata SET lock_time=" + std::to_string(time(nullptr)) +
                             ", last_lock_owner_svc_name='bench' WHERE id IN (0";
        SelectBare(handle, state, [&](const char* id, const char* name) {
            update += std::string(",") + id;
            installation.ExistsBare(name);
        });
        sqlite3_exec(handle, (update + ");").c_str(), nullptr, nullptr, nullptr);
        sqlite3_exec(handle, "COMMIT;", nullptr, nullptr, nullptr);
    }
    sqlite3_close(handle);
}

/// The statement alone.
void queue_poll_100k_statement(benchmark::State& state)
{
    Installation installation;
    FillForPoll(installation, 100000);
    sqlite3* const handle = installation.OpenBare();
    for (auto _ : state)
        SelectBare(handle, state, [](const char*, const char*) {});
    sqlite3_close(handle);
}

using Time = std::chrono::steady_clock::time_point; // of one clock for all processes

/// Processes that tell each other when a step was done.
class Step
{
public:
    Step()
    {
        if (pipe(m_ends) != 0)
            std::abort();
    }
    ~Step()
    {
        close(m_ends[0]);
        close(m_ends[1]);
    }
    Step(const Step&) = delete;
    Step& operator=(const Step&) = delete;

    void Tell(int times, Time done = {}) const
    {
        for (; times > 0; --times)
            if (write(m_ends[1], &done, sizeof done) != sizeof done)
                std::abort();
    }
    /// Gives back the latest time that was told.
    Time Await(int times) const
    {
        Time latest{};
        for (Time done; times > 0; --times) {
            if (read(m_ends[0], &done, sizeof done) != sizeof done)
                std::abort();
            latest = std::max(latest, done);
        }
        return latest;
    }

private:
    int m_ends[2];
};

/// Takes ten messages and deletes them; false when there are none.
bool TakeTen(VKDBiMessageQueue& queue)
{
    VK_MESSAGE_HEADER_LIST list;
    queue.SetFilter(10, 1);
    const bool some = queue.GetReadyMsg(&list, false) && list.count > 0;
    if (some)
        queue.DeleteMsgList(&list);
    EmptyMessageHeaderList(&list);
    return some;
}

/// Processes that take all messages of one queue, ten at a time, and delete them. Each has taken its first ten before
/// the clock runs: services run for months. The clock stops when the last message is gone, before all have seen it.
void queue_processes(benchmark::State& state)
{
    constexpr int kMessages = 3000;
    const int processes = static_cast<int>(state.range(0));
    for (auto _ : state) {
        Installation installation;
        {
            const auto queue = installation.Open("fill");
            for (int i = 0; i < kMessages + 10 * processes; ++i)
                Add(*queue, "M.0.J" + std::to_string(i) + ".mxp");
        }
        const Step ready;
        const Step start;
        const Step done;
        std::vector<pid_t> children;
        for (int p = 0; p < processes; ++p) {
            children.push_back(fork());
            if (children.back() != 0)
                continue;
            const auto queue = installation.Open("svc" + std::to_string(p));
            TakeTen(*queue);
            ready.Tell(1);
            start.Await(1);
            Time last{};
            while (TakeTen(*queue))
                last = std::chrono::steady_clock::now();
            done.Tell(1, last);
            _exit(0);
        }
        ready.Await(processes);
        const auto began = std::chrono::steady_clock::now();
        start.Tell(processes);
        state.SetIterationTime(std::chrono::duration<double>(done.Await(processes) - began).count());
        for (const pid_t child : children)
            waitpid(child, nullptr, 0);
    }
    state.SetItemsProcessed(state.iterations() * kMessages);
}

} // namespace

BENCHMARK(queue_open)->Unit(benchmark::kMicrosecond);
BENCHMARK(queue_add)->Unit(benchmark::kMicrosecond);
BENCHMARK(queue_add_bare)->Unit(benchmark::kMicrosecond);
BENCHMARK(queue_poll_100k)->Unit(benchmark::kMicrosecond);
BENCHMARK(queue_poll_1k)->Unit(benchmark::kMicrosecond);
BENCHMARK(queue_poll_100k_bare)->Unit(benchmark::kMicrosecond);
BENCHMARK(queue_poll_100k_statement)->Unit(benchmark::kMicrosecond);
BENCHMARK(queue_processes)->Arg(1)->Arg(2)->Arg(4)->Arg(8)->UseManualTime()->Iterations(3)->Unit(benchmark::kMillisecond);
