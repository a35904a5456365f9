#include <benchmark/benchmark.h>

#include <filesystem>
#include <sqlite3.h>

#include "TempDir.h"
#include "VKXmppGWUserSessionDB.h"

/// What one send asks of the session store: open it and look for a user, beside the bare library opening the same file
/// and asking the same question. The argument is the number of sessions in the file.

namespace {

class Root
{
public:
    explicit Root(long sessions)
    {
        std::filesystem::create_directory(dir / "temp");
        VKXmppGWUserSession first; // the store's own way to add one; the many go in faster below
        VKXmppGWUserSessionDB(dir.Path()).Add(&first);
        sqlite3* fast = nullptr;
        sqlite3_open(File().c_str(), &fast);
        sqlite3_exec(fast, "BEGIN;", nullptr, nullptr, nullptr);
        for (long i = 1; i <= sessions; ++i) {
            const std::string n = std::to_string(i);
            sqlite3_exec(fast,
                         ("INSERT INTO xmpp_user_sessions (type, user_id, user_name, assigned_user_name, "
                          "user_platform, jid) VALUES (1, " +
                          n + ", 'user" + n + "', '', 'phone', 'user" + n + "@example.org/mxp');")
                             .c_str(),
                         nullptr, nullptr, nullptr);
        }
        sqlite3_exec(fast, "COMMIT;", nullptr, nullptr, nullptr);
        sqlite3_close(fast);
    }
    std::string File() const { return dir / "temp/xmpp_user_sessions.sdb"; }

    const TempDir dir;
};

void OpenAndAsk(benchmark::State& state)
{
    const Root root(state.range(0));
    for (auto _ : state) {
        VKXmppGWUserSessionDB store(root.dir.Path());
        benchmark::DoNotOptimize(store.DoesUserExist(7));
    }
}

void AskOnly(benchmark::State& state)
{
    const Root root(state.range(0));
    VKXmppGWUserSessionDB store(root.dir.Path());
    for (auto _ : state)
        benchmark::DoNotOptimize(store.DoesUserExist(7));
}

void OpenAndAskBare(benchmark::State& state)
{
    const Root root(state.range(0));
    for (auto _ : state) {
        sqlite3* handle = nullptr;
        sqlite3_open(root.File().c_str(), &handle);
        char** table = nullptr;
        int rows = 0;
        int columns = 0;
        sqlite3_get_table(handle, "SELECT COUNT(*) FROM xmpp_user_sessions WHERE user_id = 7;", &table, &rows, &columns,
                          nullptr);
        sqlite3_free_table(table);
        sqlite3_close(handle);
    }
}

} // namespace

BENCHMARK(OpenAndAsk)->Arg(10)->Arg(1000)->Arg(10000)->Unit(benchmark::kMicrosecond);
BENCHMARK(OpenAndAskBare)->Arg(10)->Arg(1000)->Arg(10000)->Unit(benchmark::kMicrosecond);
BENCHMARK(AskOnly)->Arg(1000)->Unit(benchmark::kMicrosecond);
