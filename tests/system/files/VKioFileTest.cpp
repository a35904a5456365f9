#include "IoFailure.h"
#include "LockingProcess.h"
#include "TempDir.h"
#include "VKioDirectory.h"
#include "VKioFile.h"

#include <gmock/gmock.h>
#include <thread>

using testing::ElementsAre;
using testing::Pair;
using vktest::MessageOf;
using vktest::OthersCanLock;

namespace {

TEST(VKioFile, ReadsLinesWithTheirLineFeed)
{
    TempDir dir;
    VKioFile file(dir.Write("f", "one\n\nlong line\nend"));
    file.Open("r");
    unsigned char line[6];
    std::vector<std::string> lines;
    while (file.ReadLine(line, sizeof line) > 0)
        lines.emplace_back(reinterpret_cast<const char*>(line));
    EXPECT_THAT(lines, ElementsAre("one\n", "\n", "long ", "line\n", "end"));
    EXPECT_EQ(file.ReadLineEmpty(line, sizeof line), -1);
    EXPECT_EQ(file.ReadLine(line, 0), 0U);
    file.Rewind();
    EXPECT_EQ(file.ReadLineEmpty(line, sizeof line), 4);
    std::string text;
    EXPECT_EQ(file.ReadLine(text), 1U);
    EXPECT_EQ(file.ReadLine(text), 10U);
    EXPECT_EQ(text, "long line\n");
    file.Seek(4, SEEK_SET);
    EXPECT_EQ(file.Read(text), 14U);
    EXPECT_EQ(file.Read(text), 0U);
}

TEST(VKioFile, FailsWithItsOwnWords)
{
    TempDir dir;
    const std::string path = dir.Write("f", "text");
    unsigned char byte = 0;
    std::string text;
    VKioFile closed(path);
    VKioFile open(path);
    open.Open("r");
    VKioFile missing(dir / "missing");
    VKioFile full("/dev/full");
    full.Open("w");
    VKioFile folder(dir.Path().string());
    folder.Open("r");
    const std::pair<std::function<void()>, const char*> cases[] = {
        {[&] { open.Open("r"); }, "File Was Already Open"},
        {[&] { missing.Open("r"); }, "File Open Failed"},
        {[&] { closed.Read(&byte, 1); }, "File not opened for reading"},
        {[&] { closed.ReadLine(&byte, 1); }, "File not opened for reading"},
        {[&] { closed.ReadLineEmpty(&byte, 1); }, "File not opened for reading"},
        {[&] { open.Read(nullptr, 1); }, "Invalid Buffer Pointer"},
        {[&] { open.ReadLine(nullptr, 1); }, "Invalid Buffer Pointer"},
        {[&] { folder.Read(&byte, 1); }, "File Read Failed"},
        {[&] { folder.ReadLine(text); }, "File Get Lines Failed"},
        {[&] { closed.Write("x"); }, "File not opened for writting"},
        {[&] { closed.Write(nullptr, 1); }, "Invalid Buffer Pointer"},
        {[&] { open.Write("x"); }, "File Write Failed"},
        {[&] { closed.Truncate(0); }, "File not opened for reading"},
        {[&] { open.Truncate(0); }, "File Truncate Failed"},
        {[&] { closed.Flush(); }, "File Flush Failed"},
        {[&] { full.Write("x"), full.Flush(); }, "File Flush Failed"},
        {[&] { missing.GetLastModifyTime(); }, "File Get State Failed"},
        {[&] { missing.SetTime2Now(); }, "File utime Failed"},
        {[&] { VKioFile::GetSize(dir / "missing"); }, "File Get State Failed"},
    };
    for (const auto& [work, message] : cases)
        EXPECT_EQ(MessageOf(work), message);
    EXPECT_TRUE(open.IsOpen());
    EXPECT_EQ(dir.Read("f"), "text");
    const std::string shown = VKioException("/p", "a.cpp", 2, "m", "why").ToString();
    EXPECT_NE(shown.find("IO path[/p]"), std::string::npos) << shown;
}

TEST(VKioFile, WritesTruncatesAndTellsFacts)
{
    TempDir dir;
    VKioFile file(dir / "f");
    file.Open("w+");
    EXPECT_EQ(file.PrintF("%s=%d", "key", 7), 5U);
    EXPECT_EQ(file.GetSize(), 5);
    file.Truncate(3);
    file.Close();
    EXPECT_EQ(dir.Read("f"), "key");
    EXPECT_EQ(file.GetSize(), 3);
    EXPECT_EQ(file.GetFileName(), "f");

    const auto times = [&] { return std::pair<long, long>(file.GetLastAccessTime(), file.GetLastModifyTime()); };
    file.SetTime(1000, 2000);
    file.SetModifyTime(3000);
    EXPECT_THAT(times(), Pair(1000, 3000));
    file.SetAccessTime(4000);
    EXPECT_THAT(times(), Pair(4000, 3000));
    file.SetTime2Now();
    EXPECT_GT(file.GetLastModifyTime(), 4000);

    EXPECT_TRUE(VKioFile::SetReadOnly(file.GetPath(), true));
    EXPECT_EQ(std::filesystem::status(file.GetPath()).permissions() & std::filesystem::perms::owner_write,
              std::filesystem::perms::none);
    EXPECT_TRUE(VKioFile::SetReadOnly(file.GetPath(), false));
    EXPECT_TRUE(VKioFile::Copy(file.GetPath(), dir / "copy"));
    EXPECT_FALSE(VKioFile::Copy(file.GetPath(), dir / "./f"));
    EXPECT_EQ(dir.Read("f") + dir.Read("copy"), "keykey");
    EXPECT_TRUE(VKioFile::RenameFile(dir / "copy", dir / "other"));
    EXPECT_TRUE(VKioFile::Check(dir.Path().string(), "other"));
    EXPECT_FALSE(VKioFile::Check(dir.Path().string(), "copy"));
    EXPECT_FALSE(VKioFile::CheckFile(dir.Path().string())) << "a directory is no file";
    EXPECT_TRUE(file.DeleteFile());
    EXPECT_FALSE(VKioFile::IsExisting(dir / "f"));
}

TEST(VKioFile, LockKeepsOtherProcessesAndThreadsOut)
{
    TempDir dir;
    const std::string path = dir.Write("f", "x");
    VKioFile file(path);
    EXPECT_NO_THROW(file.Lock('w', false)) << "nothing to lock yet";
    file.Open("r+");
    file.Lock('r', false);
    EXPECT_TRUE(OthersCanLock(path, F_RDLCK));
    EXPECT_FALSE(OthersCanLock(path, F_WRLCK));
    bool entered = false;
    std::thread other([&] {
        file.Lock('w', true);
        entered = true;
        file.Unlock();
    });
    EXPECT_FALSE(entered);
    file.Unlock();
    other.join();
    EXPECT_TRUE(entered);
    EXPECT_TRUE(OthersCanLock(path));

    vktest::LockingProcess holder(path);
    EXPECT_EQ(MessageOf([&] { file.Lock('r', false); }), "File Lock Failed");
    holder.Release();
    file.Lock('w', true);
    file.Close();
    EXPECT_TRUE(OthersCanLock(path));
    file.Open("r+");
    std::thread([&] { file.Lock('w', true), file.Unlock(); }).join(); // Close let the thread lock go
}

TEST(VKioFile, AfterALockTheFileIsReadAsItIsNow)
{
    TempDir dir;
    const std::string path = dir.Write("f", "old content\nsecond\n");
    VKioFile file(path);
    file.Open("r+");
    std::string line;
    file.ReadLine(line);
    dir.Write("f", "new\n");
    file.Lock('r', true);
    file.Read(line);
    EXPECT_EQ(line, "new\n");
    file.Unlock();
}

TEST(VKioFile, NamesMatchPatternsAsTextsDoButNeverWithNoNameOrPattern)
{
    EXPECT_TRUE(VKioFile::DoesFileNameContainPattern("job.msg", "j*.msg"));
    EXPECT_FALSE(VKioFile::DoesFileNameContainPattern("job.msg", "job"));
    EXPECT_FALSE(VKioFile::DoesFileNameContainPattern("JOB", "job"));
    for (const char* none : {"", static_cast<const char*>(nullptr)}) {
        EXPECT_FALSE(VKioFile::DoesFileNameContainPattern(none, "*"));
        EXPECT_FALSE(VKioFile::DoesFileNameContainPattern("a", none));
    }
}

std::vector<std::string> NamesIn(VKioFileList& list)
{
    std::vector<std::string> names;
    for (VKioFile* file : list)
        names.push_back(file->GetFileName());
    VKioFile::CleanFileList(list);
    return names;
}

TEST(VKioDirectory, ListsAllButItsLock)
{
    TempDir dir;
    for (const char* name : {"c.txt", "lock", "lock2", "a.txt", "sub/x", "b.log"})
        dir.Write(name, "");
    const VKioDirectory directory(dir.Path().string());
    VKioFileList list;
    EXPECT_EQ(directory.GetFiles(list, "*", 0, 0), 4);
    EXPECT_THAT(NamesIn(list), ElementsAre("a.txt", "b.log", "c.txt", "lock2"));
    EXPECT_TRUE(list.empty());
    directory.GetFiles(list, "*.txt", 1, 5);
    EXPECT_THAT(NamesIn(list), ElementsAre("c.txt"));
    VKioDirectory::GetAllFiles(dir.Path().string(), list, "*", 3, 2);
    EXPECT_THAT(NamesIn(list), ElementsAre("lock2", "sub"));
    EXPECT_EQ(MessageOf([&] { VKioDirectory::GetFiles(dir / "none", list, "*", 0, 0); }), "Read Directory Failed");
}

TEST(VKioDirectory, IsMadeCopiedAndRemoved)
{
    TempDir dir;
    EXPECT_TRUE(VKioDirectory::CreateFullPath(dir / "a/b/c"));
    EXPECT_TRUE(VKioDirectory::CreateFullPath(dir / "a/b/c/"));
    dir.Write("a/b/one", "1");
    dir.Write("a/b/lock", "lock");
    dir.Write("a/two", "2");
    EXPECT_FALSE(VKioDirectory::CreateFullPath(dir / "a/two"));
    EXPECT_TRUE(VKioDirectory::Check(dir / "a", "b"));
    EXPECT_TRUE(VKioDirectory::Check(dir / "a", "r"));
    EXPECT_FALSE(VKioDirectory::Check(dir / "a", "two"));
    EXPECT_FALSE(VKioDirectory::Check(dir / "x", "r"));

    EXPECT_TRUE(VKioDirectory::Copy(dir / "a", dir / "copy"));
    EXPECT_EQ(dir.Read("copy/b/one") + dir.Read("copy/two"), "12");
    EXPECT_TRUE(VKioDirectory::Check(dir / "copy/b", "c"));
    EXPECT_FALSE(VKioFile::IsExisting(dir / "copy/b/lock"));
    EXPECT_FALSE(VKioDirectory::Copy(dir / "a", dir / "a/b/inside"));

    EXPECT_FALSE(VKioDirectory::Remove(dir / "a/b", false));
    EXPECT_FALSE(VKioDirectory::Remove(dir / "a/b", true)) << "a sub-directory is left";
    EXPECT_TRUE(VKioDirectory::Remove(dir / "a/b/c", false));
    dir.Write("a/b/lock", "lock");
    EXPECT_TRUE(VKioDirectory::Remove(dir / "a/b", true));
}

TEST(VKioDirectory, IsLockedThroughAFileInIt)
{
    TempDir dir;
    VKioDirectory directory(dir.Path().string());
    directory.Lock('w', true);
    EXPECT_FALSE(OthersCanLock(dir / "lock"));
    directory.Unlock();
    EXPECT_EQ(dir.Read("lock"), "lock");
    EXPECT_TRUE(OthersCanLock(dir / "lock"));
    directory.Lock('r', true);
    EXPECT_TRUE(OthersCanLock(dir / "lock", F_RDLCK));
    EXPECT_FALSE(OthersCanLock(dir / "lock"));
    directory.Unlock();

    vktest::LockingProcess holder(dir / "lock");
    EXPECT_EQ(MessageOf([&] { directory.Lock('w', false); }), "File Lock Failed");
    holder.Release();
    int inside = 0;
    bool shared = false;
    const auto worker = [&] {
        for (int i = 0; i < 200; ++i) {
            directory.Lock('w', true);
            shared = shared || inside++ != 0;
            --inside;
            directory.Unlock();
        }
    };
    std::thread other(worker);
    worker();
    other.join();
    EXPECT_FALSE(shared);
}

} // namespace
