#include <benchmark/benchmark.h>

#include <memory>
#include <sqlite3.h>

#include "ReceiverInstallation.h"

/// What a send asks of the receivers: the factory's object, and one receiver by id; and what a list of all of them costs.
/// Beside each the bare library running the same statements in a transaction of the same kind.

namespace {

struct CloseHandle
{
    void operator()(sqlite3* handle) const { sqlite3_close(handle); }
};

/// The bare library on the receivers' file.
class BareFile
{
public:
    BareFile()
    {
        sqlite3* handle = nullptr;
        sqlite3_open(ReceiverInstallation::Get().File().c_str(), &handle);
        m_handle.reset(handle);
    }

    void Read(std::initializer_list<const char*> queries)
    {
        sqlite3_exec(m_handle.get(), "BEGIN IMMEDIATE TRANSACTION ;", nullptr, nullptr, nullptr);
        for (const char* query : queries) {
            char** table = nullptr;
            int rows = 0;
            int columns = 0;
            sqlite3_get_table(m_handle.get(), query, &table, &rows, &columns, nullptr);
            sqlite3_free_table(table);
        }
        sqlite3_exec(m_handle.get(), "COMMIT TRANSACTION ;", nullptr, nullptr, nullptr);
    }

private:
    std::unique_ptr<sqlite3, CloseHandle> m_handle;
};

void factory_hit(benchmark::State& state)
{
    VKDatabase& database = ReceiverInstallation::Get().Database();
    for (auto _ : state)
        benchmark::DoNotOptimize(database.getVKDBiReceiverObject());
}

void receiver_by_id(benchmark::State& state)
{
    VKDatabase& database = ReceiverInstallation::Get().Database();
    for (auto _ : state) {
        VK_RECEIVER receiver;
        benchmark::DoNotOptimize(database.getVKDBiReceiverObject()->GetByID(&receiver, 50));
        EmptyReceiver(&receiver);
    }
}

void receiver_by_id_bare(benchmark::State& state)
{
    BareFile file;
    for (auto _ : state)
        file.Read(
            {"SELECT * FROM receiver WHERE id=50;", "SELECT * FROM receiver_dept WHERE owner_id=50 ORDER BY id;"});
}

void receiver_list_10000(benchmark::State& state)
{
    VKDatabase& database = ReceiverInstallation::Get().Database();
    for (auto _ : state) {
        VK_RECEIVER_LIST list;
        database.getVKDBiReceiverObject()->Get(&list);
        if (list.count != ReceiverInstallation::kReceivers)
            state.SkipWithError("receivers are missing");
        EmptyReceiverList(&list);
    }
}

void receiver_list_10000_bare(benchmark::State& state)
{
    BareFile file;
    for (auto _ : state)
        file.Read({"SELECT * FROM receiver ORDER BY UPPER(name) ASC;"});
}

/// What a thread pays once before its first receiver, and again after half an hour without one.
void receiver_open(benchmark::State& state)
{
    VKDBsystem* const system = ReceiverInstallation::Get().Database().getDBSystemObject();
    for (auto _ : state)
        delete VKDBiReceiver::CreateInstance(system);
}

} // namespace

BENCHMARK(factory_hit)->Unit(benchmark::kNanosecond);
BENCHMARK(receiver_by_id)->Unit(benchmark::kMicrosecond);
BENCHMARK(receiver_by_id_bare)->Unit(benchmark::kMicrosecond);
BENCHMARK(receiver_list_10000)->Unit(benchmark::kMillisecond);
BENCHMARK(receiver_list_10000_bare)->Unit(benchmark::kMillisecond);
BENCHMARK(receiver_open)->Unit(benchmark::kMicrosecond);
