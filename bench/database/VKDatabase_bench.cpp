#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>
#include <sqlite3.h>

#include "VKConfiguration.h"
#include "VKDBiReceiver.h"
#include "VKDatabase.h"
#include "VKRecordText.h"

/// What one send asks of the receivers: the factory's object, and one receiver by id, beside the bare library reading
/// the same row in a transaction of the same kind.

namespace {

/// An installation with receivers in it; one for the whole program, because a process has one configuration.
class Installation
{
public:
    static Installation& Get()
    {
        static Installation installation;
        return installation;
    }
    std::string File() const { return m_root + "/config/receivers.sdb"; }
    VKDatabase& Database() { return *VKDatabase::getVKMultiThreadedDatabase(nullptr, true); }

private:
    Installation()
    {
        std::string name = (std::filesystem::temp_directory_path() / "vkbench-XXXXXX").string();
        m_root = mkdtemp(name.data());
        std::filesystem::create_directories(m_root + "/config");
        FILE* const source = std::fopen((m_root + "/config/datasource").c_str(), "w");
        std::fputs("database_type:\tSdb\n", source);
        std::fclose(source);
        VKConfiguration::getVKConfiguration()->setConfDirectory(m_root + "/config");
        VKConfiguration::getVKConfiguration()->loadPrimaryConfiguration(true);
        for (int i = 0; i < 100; ++i) {
            VK_RECEIVER receiver;
            vk::SetText(receiver.name, "receiver " + std::to_string(i), "name");
            vk::SetText(receiver.pin, "user" + std::to_string(i) + "@example.org", "pin");
            Database().getVKDBiReceiverObject()->Add(&receiver, true);
        }
    }
    ~Installation()
    {
        Database().resetCache();
        std::filesystem::remove_all(m_root);
    }

    std::string m_root;
};

void FactoryHit(benchmark::State& state)
{
    VKDatabase& database = Installation::Get().Database();
    for (auto _ : state)
        benchmark::DoNotOptimize(database.getVKDBiReceiverObject());
}

void ReceiverById(benchmark::State& state)
{
    VKDatabase& database = Installation::Get().Database();
    for (auto _ : state) {
        VK_RECEIVER receiver;
        benchmark::DoNotOptimize(database.getVKDBiReceiverObject()->GetByID(&receiver, 50));
        EmptyReceiver(&receiver);
    }
}

void ReceiverByIdBare(benchmark::State& state)
{
    sqlite3* handle = nullptr;
    sqlite3_open(Installation::Get().File().c_str(), &handle);
    for (auto _ : state) {
        sqlite3_exec(handle, "BEGIN IMMEDIATE TRANSACTION ;", nullptr, nullptr, nullptr);
        for (const char* query :
             {"SELECT * FROM receiver WHERE id=50;", "SELECT * FROM receiver_dept WHERE owner_id=50 ORDER BY id;"}) {
            char** table = nullptr;
            int rows = 0;
            int columns = 0;
            sqlite3_get_table(handle, query, &table, &rows, &columns, nullptr);
            sqlite3_free_table(table);
        }
        sqlite3_exec(handle, "COMMIT TRANSACTION ;", nullptr, nullptr, nullptr);
    }
    sqlite3_close(handle);
}

/// What a thread pays once before its first receiver, and again after half an hour without one.
void OpenReceivers(benchmark::State& state)
{
    VKDBsystem* const system = Installation::Get().Database().getDBSystemObject();
    for (auto _ : state)
        delete VKDBiReceiver::CreateInstance(system);
}

} // namespace

BENCHMARK(FactoryHit)->Unit(benchmark::kNanosecond);
BENCHMARK(ReceiverById)->Unit(benchmark::kMicrosecond);
BENCHMARK(ReceiverByIdBare)->Unit(benchmark::kMicrosecond);
BENCHMARK(OpenReceivers)->Unit(benchmark::kMicrosecond);
