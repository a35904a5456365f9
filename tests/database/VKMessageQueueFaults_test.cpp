#include <gmock/gmock.h>

#include <array>
#include <csignal>
#include <fcntl.h>
#include <fstream>
#include <optional>
#include <sqlite3.h>
#include <sys/file.h>
#include <sys/stat.h>

#include "ChildProcess.h"
#include "CountedPauses.h"
#include "DatabaseCells.h"
#include "FileFaults.h"
#include "QueueOperations.h"

using testing::HasSubstr;
using vktest::CountedPauses;

/// What may go wrong with the files of a queue: each operation, under each fault. It either works or throws an error
/// that says what is wrong; nothing is lost, and once the fault is gone the same objects work on.

namespace {

namespace fs = std::filesystem;

/// The handle that SQLite opened last, for limits that only a connection itself can be given.
sqlite3* s_newestHandle = nullptr;

int NoteHandle(sqlite3* handle, const char**, const sqlite3_api_routines*)
{
    s_newestHandle = handle;
    return SQLITE_OK;
}

/// Another process that has a file in a transaction until it is told to let go.
class FileInUse
{
public:
    explicit FileInUse(const std::string& path)
        : m_holder([this, path] {
              VKSQLite3Database file(path, true);
              if (!file.StartTransactionExclusive("", false, 1, 1))
                  return 1;
              m_inUse.Send();
              return m_release.Await() ? 0 : 2;
          })
    {
        EXPECT_TRUE(m_inUse.Await());
        sqlite3_busy_timeout(s_newestHandle, 0); // a minute within each attempt otherwise
    }
    void LetGo()
    {
        m_release.Send();
        EXPECT_EQ(m_holder.Wait(), 0);
    }

private:
    Signal m_inUse;
    Signal m_release;
    ChildProcess m_holder;
};

class VKMessageQueueFaults : public FaultyQueue<FileDatabase>
{
protected:
    VKMessageQueueFaults()
    {
        sqlite3_auto_extension(reinterpret_cast<void (*)()>(NoteHandle));
        fs::permissions(dir.Path(), fs::perms(0755)); // others may look for the queue, too
        queue = Open(1);
        Fill();
    }
    ~VKMessageQueueFaults() override
    {
        sqlite3_cancel_auto_extension(reinterpret_cast<void (*)()>(NoteHandle));
    }

    /// All that is in the queue; rows and files must agree, for this handle and for one that is opened anew.
    QueueState Content(const std::string& what)
    {
        QueueState content;
        for (const std::string& name : Names(*queue))
            content[name] = Body(*queue, name);
        const auto other = Open(1, "other");
        EXPECT_EQ(other->GetTotalRecordCount(), static_cast<long>(content.size())) << what;
        std::set<std::string> names;
        for (const auto& row : content)
            names.insert(row.first);
        EXPECT_EQ(Files(*other), names) << what;
        return content;
    }

    std::string File(const std::string& name) const { return path + "/" + name; }
    static std::string ReadAll(const std::string& file)
    {
        std::ifstream in(file, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), {}};
    }
    static void WriteAll(const std::string& file, const std::string& text)
    {
        std::ofstream(file, std::ios::binary | std::ios::trunc) << text;
    }

    const std::string path = queue->GetQueueName();
};

/// How something breaks and is put right. `errors` are regular expressions of what the operations of each kind say
/// meanwhile, on a queue that was open before and on one that is opened then; an empty one means that it works.
struct Fault
{
    const char* name;
    std::function<void()> begin;
    std::function<void()> end;
    std::array<const char*, 4> open;
    std::array<const char*, 4> opened;
};

constexpr std::array<const char*, 4> All(const char* error) { return {error, error, error, error}; }

} // namespace

TEST_F(VKMessageQueueFaults, EachOperationTellsWhatIsWrongLosesNothingAndWorksWhenItIsRight)
{
    const std::string database = File("queue_metabase.sdb");
    const std::string intent = File("queue_metabase.sdb-intent");
    std::optional<vktest::WithoutRootRights> user;
    std::optional<vktest::FilesEndAt> end;
    std::string whole;
    const auto modes = [&](mode_t directory, mode_t files) {
        for (const auto& entry : fs::directory_iterator(path))
            chmod(entry.path().c_str(), entry.is_directory() ? directory : files);
        chmod(path.c_str(), directory);
    };
    const auto withoutRights = [&](mode_t directory, mode_t files) {
        return [=, &user] {
            modes(directory, files);
            user.emplace();
        };
    };
    const auto withRights = [&] {
        user.reset();
        chmod(path.c_str(), 0755);
        modes(0755, 0644);
    };
    const auto damage = [&](std::function<void(std::string&)> change) {
        return [&, change] {
            whole = ReadAll(database);
            std::string damaged = whole;
            change(damaged);
            std::fstream(database, std::ios::in | std::ios::out | std::ios::binary) << damaged;
            fs::resize_file(database, damaged.size());
        };
    };
    const auto restore = [&] { // as one does it with a copy, while no service runs
        queue.reset();
        for (const char* behind : {"-wal", "-shm"})
            fs::remove(database + behind);
        WriteAll(database + ".copy", whole);
        fs::rename(database + ".copy", database);
    };
    std::optional<FileInUse> holder;
    const char* const noIntent = "intent\\] cannot be opened.: (Permission denied|No such file|Is a directory)";
    const Fault faults[] = {
        {"locked by another process", [&] { holder.emplace(database); }, [&] { holder->LetGo(); },
         All("Unable to start a transaction on .*queue_metabase.sdb\\]: it is in use"), {}},
        {"read-only", withoutRights(0555, 0444), withRights,
         {"cannot be (written|deleted|renamed|put aside).: Permission denied", "", "", ""},
         All("attempt to write a readonly database")},
        {"directory without rights", withoutRights(0, 0644), withRights, All(noIntent),
         All("Unable to open DB .*queue_metabase.sdb\\]")},
        {"disk full at once", [&] { end.emplace(1); }, [&] { end.reset(); },
         {"disk I/O error|intent\\] cannot be written.: File too large", "disk I/O error", "", ""},
         All("disk I/O error")},
        {"disk full at the end", [&] { end.emplace(fs::file_size(database + "-wal")); }, [&] { end.reset(); },
         {"disk I/O error", "disk I/O error", "", ""}, {}},
        {"header overwritten", damage([](std::string& text) { text.replace(0, 100, 100, 'j'); }), restore,
         {}, All("Unable to open DB .*queue_metabase.sdb\\]: file is not a database")},
        {"pages overwritten",
         damage([](std::string& text) { text.replace(4096, text.size() - 4096, text.size() - 4096, 'j'); }),
         restore, {}, All("database disk image is malformed")},
        {"cut short", damage([](std::string& text) { text.resize(4096); }), restore,
         {}, All("Unable to open DB .*queue_metabase.sdb\\]: database disk image is malformed")},
        {"directory away", [&] { fs::rename(path, path + ".away"); }, [&] { fs::rename(path + ".away", path); },
         All(noIntent), All("Invalid queue path \\[")},
        {"another directory in its place",
         [&] {
             fs::rename(path, path + ".away");
             fs::create_directory(path);
             WriteAll(database, std::string(200, 'j'));
         },
         [&] {
             fs::remove_all(path);
             fs::rename(path + ".away", path);
         },
         All("Unable to start a transaction on .*queue_metabase.sdb\\]: file is not a database"),
         All("Unable to open DB .*queue_metabase.sdb\\]: file is not a database")},
        {"body without rights",
         [&] {
             withoutRights(0777, 0666)();
             user.reset();
             chmod(File(kA).c_str(), 0);
             user.emplace();
         },
         withRights, {"", "", "", "message \\[M.0.A.mxp\\] cannot be read"}, {"", "", "", "\\] cannot be read"}},
        {"intent without rights",
         [&] {
             chmod(intent.c_str(), 0);
             queue.reset();
             modes(0777, 0666);
             chmod(intent.c_str(), 0);
             user.emplace();
             queue = Open(1);
         },
         withRights, All(noIntent), {}},
        {"intent a directory",
         [&] {
             fs::remove(intent);
             fs::create_directory(intent);
         },
         [&] { fs::remove(intent); }, All(noIntent), All(noIntent)},
        {"intent deleted", [&] { fs::remove(intent); }, [] {}, All(""), All("")},
    };
    for (const Fault& fault : faults)
        for (const QueueOperation& operation : Operations())
            for (const bool open : {true, false}) {
                const char* const expected = (open ? fault.open : fault.opened)[operation.kind];
                if (expected == nullptr)
                    continue;
                const std::string what = operation.name + std::string(", ") + fault.name + (open ? "" : ", opened");
                SCOPED_TRACE(what);
                queue = Open(1);
                Fill();
                if (!open)
                    queue.reset();
                const CountedPauses pauses;
                fault.begin();
                const std::string error = WholeErrorOf([&] {
                    if (!open)
                        queue = Open(1);
                    operation.run(*queue);
                });
                fault.end();
                EXPECT_THAT(error, testing::ContainsRegex(*expected == '\0' ? "^$" : expected));
                if (queue == nullptr)
                    queue = Open(1);
                EXPECT_EQ(WholeErrorOf([&] {
                              EXPECT_EQ(Content(what), error.empty() ? operation.after : kBefore);
                              if (!error.empty())
                                  operation.run(*queue);
                              EXPECT_EQ(Content(what), operation.after);
                          }),
                          "");
            }
}

TEST_F(VKMessageQueueFaults, ABodyThatDoesNotFitLeavesTheOneItWasToReplace)
{
    const std::string big(300000, 'x');
    const auto errorOf = [&](const std::function<void()>& change) {
        const vktest::FilesEndAt end(200000);
        const CountedPauses pauses;
        const std::string error = WholeErrorOf(change);
        EXPECT_EQ(pauses.total, 2046000) << "eleven tries";
        return error;
    };
    const std::function<void()> changes[] = {
        [&] { Add(*queue, kA, big); }, [&] { Modify(*queue, kB, kB, big); }, [&] { Modify(*queue, kB, kA, big); },
        [&] { Add(*queue, kC, big); }};
    for (const auto& change : changes) {
        EXPECT_THAT(errorOf(change), HasSubstr("cannot be written.: File too large"));
        EXPECT_EQ(Content("undone"), kBefore);
        EXPECT_EQ(Content("looked at once more"), kBefore);
    }
}

TEST_F(VKMessageQueueFaults, AFullDatabaseKeepsWhatItHasAndGoesOnWhenThereIsRoom)
{
    sqlite3_exec(s_newestHandle, "PRAGMA max_page_count=14;", nullptr, nullptr, nullptr); // as if the disk ended there
    QueueState stored = kBefore;
    std::string error;
    for (int i = 0; error.empty() && i < 1000; ++i) {
        const std::string name = "M.0.J" + std::to_string(i) + ".mxp";
        error = WholeErrorOf([&] { Add(*queue, name, "x"); });
        if (error.empty())
            stored[name] = "x";
    }
    EXPECT_THAT(error, HasSubstr("database or disk is full"));
    EXPECT_GT(stored.size(), kBefore.size());
    EXPECT_EQ(Content("full"), stored);
    EXPECT_EQ(Ready(*queue).size(), stored.size());
    for (int i = 0; i < 20; ++i) {
        const std::string name = stored.rbegin()->first;
        EXPECT_TRUE(queue->Delete(name));
        stored.erase(name);
    }
    Add(*queue, "M.0.after.mxp", "x");
    stored["M.0.after.mxp"] = "x";
    EXPECT_EQ(Content("with room again"), stored);
}

TEST_F(VKMessageQueueFaults, ALockIsWaitedForAsLongAsTold)
{
    FileInUse holder(File("queue_metabase.sdb"));
    const CountedPauses pauses([&](long count) {
        if (count == 3999) // the last attempt gets it
            holder.LetGo();
    });
    Add(*queue, "M.0.C.mxp", "c");
    EXPECT_EQ(pauses.total, 3999l * 30000);
    EXPECT_EQ(Body(*queue, "M.0.C.mxp"), "c");
}

TEST_F(VKMessageQueueFaults, WhatIsWrittenInTheIntentIsUndoneOnceOrTwiceButNeverTurnsAgainstAMessage)
{
    const std::string intent = File("queue_metabase.sdb-intent");
    const long committed = std::stol(CellOf(File("queue_metabase.sdb"), "PRAGMA user_version;"));
    const std::string begun = std::to_string(committed + 1) + "\n";
    const std::string undo = "queue_metabase.sdb-undo/" + std::to_string(committed + 1) + "-0";
    const std::string lines[] = {
        std::string("\xff\0\n\t\n\t\t\n", 8),                       // garbage
        std::string(100000, 'j'),
        begun + "B\t" + kA + "\t" + kB + "\n",                        // aimed at what is no backup
        begun + "B\t" + kA + "\t" + undo + "/../" + kB + "\n",
        begun + "W\t../slot0/" + kA + "\t\n" + "N\t../x\t" + kB + "\n" + "X\t" + kA + "\t" + kB + "\n",
        std::to_string(committed) + "\nW\t" + kA + "\t\n",            // committed
        begun + "W\t" + kA,                                           // died while the line was written
        begun + "B\t" + kA + "\t" + undo + "\n", // died before, and while undoing, behind each step
        begun + "B\t" + kA + "\t" + undo + "\nW\t" + kA + "\t\n",
        begun + "W\tM.0.new.mxp\t\n",
        begun + "N\t" + kA + "\tR.0.A.mxp\n",
        begun + "B\t" + kB + "\t" + undo + "\nN\t" + kA + "\t" + kB + "\n",
        begun + "D\t" + kA + "\t\n",                                // died before it could delete the row
        std::to_string(committed) + "\nD\t" + kA + "\t\n",         // and behind that, but there is a new row
        std::to_string(committed) + "\nD\t../slot0/" + kA + "\t\nD\t" + kA + "\t" + kB + "\n",
    };
    for (const std::string& text : lines) {
        WriteAll(intent, text);
        EXPECT_EQ(Content(text.substr(0, 80)), kBefore) << text.substr(0, 80);
    }
    fs::create_directory(File("queue_metabase.sdb-undo"));
    // In the middle of replacing A: put aside, and half of the new one written.
    fs::rename(File(kA), File(undo));
    WriteAll(File(kA), "A");
    WriteAll(intent, begun + "B\t" + kA + "\t" + undo + "\nW\t" + kA + "\t\n");
    EXPECT_EQ(Content("put back"), kBefore);
    // Died behind the commit, with a file still to delete.
    const std::string gone = "M.0." + std::string(60, 'g') + ".mxp";
    WriteAll(File(gone), "x");
    WriteAll(intent, std::to_string(committed) + "\nD\t" + gone + "\t\nD\t" + kA + "\t\nD\tM.0.never.mxp\t\n");
    EXPECT_EQ(Content("finished"), kBefore);
    // A row without its file is to be renamed to the name of another message.
    fs::remove(File(kA));
    EXPECT_THAT(WholeErrorOf([&] { queue->UpdateName(kA, kB); }), HasSubstr("cannot be renamed"));
    EXPECT_EQ(Content("nothing to rename"), (QueueState{{kB, "b"}}));
}

TEST_F(VKMessageQueueFaults, AServiceThatIsStoppedInItsTurnKeepsOthersWaitingForTwoMinutesOnly)
{
    const Signal inTurn;
    const pid_t stopped = fork();
    if (stopped == 0) {
        const int intent = open(File("queue_metabase.sdb-intent").c_str(), O_RDWR);
        if (flock(intent, LOCK_EX) != 0)
            _exit(1);
        inTurn.Send();
        raise(SIGSTOP);
        _exit(0);
    }
    ASSERT_TRUE(inTurn.Await());
    int status = 0;
    ASSERT_EQ(waitpid(stopped, &status, WUNTRACED), stopped);
    ASSERT_TRUE(WIFSTOPPED(status));
    {
        const CountedPauses pauses;
        EXPECT_THAT(WholeErrorOf([&] { Add(*queue, "M.0.C.mxp", "c"); }),
                    testing::AllOf(HasSubstr("Unable to start a transaction on [" + path), HasSubstr("it is in use"),
                                   HasSubstr("kept its turn for two minutes")));
        EXPECT_GE(pauses.total, 120000000);
        EXPECT_LT(pauses.total, 121000000);
    }
    kill(stopped, SIGCONT);
    waitpid(stopped, &status, 0);
    EXPECT_EQ(Content("going on"), kBefore);
}
