#include "LockingProcess.h"
#include "TempDir.h"
#include "VKfile.h"
#include "VKfileHandle.h"

#include <chrono>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <vector>

using testing::ElementsAre;
using vktest::OthersCanLock;

using namespace std::string_literals;

namespace {

TEST(VKfileFOpen, ModesSelectFlags)
{
    TempDir dir;
    struct Mode
    {
        const char* name;
        bool opensMissing, reads, writes, keeps;
    };
    const Mode modes[] = {{"r", false, true, false, true}, {"rb", false, true, false, true},
                          {"r+", false, true, true, true}, {"rb+", false, true, true, true},
                          {"w", true, false, true, false}, {"w+", true, true, true, false},
                          {"a", true, false, true, true},  {"a+", true, true, true, true}};
    for (const Mode& mode : modes) {
        SCOPED_TRACE(mode.name);
        const std::string path = dir.Write("old", "content"), missing = dir / ("new"s + mode.name);
        const vk::FileHandle fresh(VKfileFOpen(missing.c_str(), mode.name));
        EXPECT_EQ(static_cast<bool>(fresh), mode.opensMissing);
        const vk::FileHandle file(VKfileFOpen(path.c_str(), mode.name));
        ASSERT_TRUE(file);
        EXPECT_EQ(VKfileSize(file.Get()), mode.keeps ? 7 : 0);
        char byte = 0;
        EXPECT_EQ(VKfileRead(file.Get(), &byte, 1) >= 0, mode.reads);
        EXPECT_EQ(VKfileWrite(file.Get(), "x", 1) == 1, mode.writes);
    }
    const std::string path = dir.Write("f", "");
    for (const char* mode : {"x", "b", "+r", "", static_cast<const char*>(nullptr)})
        EXPECT_EQ(VKfileFOpen(path.c_str(), mode), -1);
    EXPECT_EQ(VKfileFOpen("", "r"), -1);
    EXPECT_EQ(VKfileFOpen(nullptr, "r"), -1);
}

TEST(VKfile, ReadsAndWritesLinesAndItems)
{
    TempDir dir;
    const vk::FileHandle file(VKfileFOpen((dir / "f").c_str(), "w+"));
    EXPECT_EQ(VKfileFPuts("one\n", file.Get()), 4);
    EXPECT_EQ(VKfileFPrintf(file.Get(), "%s-%d\nlast", "two", 2), 10);
    VKfileFSeek(file.Get(), 0, SEEK_SET);
    char line[5];
    std::vector<std::string> seen;
    while (VKfileFGets(line, sizeof line, file.Get()))
        seen.emplace_back(line);
    EXPECT_THAT(seen, ElementsAre("one\n", "two-", "2\n", "last"));
    VKfileFSeek(file.Get(), 0, SEEK_SET);
    char items[20];
    EXPECT_EQ(VKfileFRead(items, 4, 5, file.Get()), 3) << "14 bytes are three whole items of four";
    EXPECT_EQ(VKfileFWrite("abcd", 2, 2, file.Get()), 2);
}

TEST(VKfile, CopiesAndMovesButNeverOntoItself)
{
    TempDir dir;
    const std::string from = dir.Write("from", std::string(200000, 'x'));
    EXPECT_EQ(VKfileCopy(from.c_str(), (dir / "to").c_str()), 0);
    EXPECT_EQ(dir.Read("to").size(), 200000U);
    EXPECT_EQ(VKfileCopy(from.c_str(), from.c_str()), -1);
    EXPECT_EQ(VKfileSize(from.c_str()), 200000);
    EXPECT_EQ(VKfileCopy((dir / "missing").c_str(), (dir / "to").c_str()), -1);
    EXPECT_EQ(VKfileMorph(from.c_str(), (dir / "moved").c_str()), 0);
    EXPECT_FALSE(VKfileCheckFile(dir.Path().c_str(), "from"));
    EXPECT_TRUE(VKfileCheckFile(dir.Path().c_str(), "moved"));
    EXPECT_FALSE(VKfileCheckDir(dir.Path().c_str(), "moved"));
    EXPECT_TRUE(VKfileCheckDir(dir.Path().parent_path().c_str(), dir.Path().filename().c_str()));
}

TEST(VKfile, GivesAFileAsLines)
{
    TempDir dir;
    const std::string path = dir.Write("lines", "one\n\r\nthree\r\n\nfive");
    for (const auto read : {&VKfileReadFileLines, &VKfileReadFileLinesWithLock}) {
        int count = 0;
        char** lines = nullptr;
        ASSERT_EQ(read(path.c_str(), &count, &lines), 0);
        EXPECT_THAT(std::vector<std::string>(lines, lines + count), ElementsAre("one", "", "three", "", "five"));
        VKfileFreeLines(count, lines);
        EXPECT_EQ(read((dir / "missing").c_str(), &count, &lines), -1);
        EXPECT_EQ(count, 0);
        EXPECT_EQ(lines, nullptr);
    }
}

TEST(VKfile, FindsByPattern)
{
    TempDir dir;
    for (const char* name : {"a.txt", "b.txt", "c.log", "sub/d.txt"})
        dir.Write(name, "12345");
    finddata_t found;
    std::vector<std::string> seen;
    file_find_t* search = VKfileFindFirst(dir.Path().c_str(), "*", &found);
    ASSERT_NE(search, nullptr);
    do
        seen.push_back(found.name + (found.directory ? "/"s : " " + std::to_string(found.size)));
    while (VKfileFindNext(search, &found) == 0);
    VKfileFindClose(search);
    EXPECT_THAT(seen, testing::UnorderedElementsAre("a.txt 5", "b.txt 5", "c.log 5", "sub/"));
    EXPECT_TRUE(VKfileFindFile(dir.Path().c_str(), "*.log", &found));
    EXPECT_STREQ(found.name, "c.log");
    EXPECT_FALSE(VKfileFindFile(dir.Path().c_str(), "*.bin", nullptr));
    EXPECT_EQ(VKfileFindFirst((dir / "none").c_str(), "*", &found), nullptr);
}

TEST(VKfileLock, KeepsOtherProcessesOutUntilTheDescriptorIsClosed)
{
    TempDir dir;
    const std::string path = dir.Write("f", "x");
    vk::FileHandle file(VKfileFOpen(path.c_str(), "r+"));
    ASSERT_EQ(VKfileLock(file.Get(), 0, 0), 0);
    EXPECT_TRUE(OthersCanLock(path, F_RDLCK));
    EXPECT_FALSE(OthersCanLock(path, F_WRLCK));
    ASSERT_EQ(VKfileLock(file.Get(), 2, 1), 0);
    EXPECT_FALSE(OthersCanLock(path, F_RDLCK));
    EXPECT_EQ(VKfileUnlock(file.Get()), 0);
    EXPECT_FALSE(OthersCanLock(path)) << "the unlock does not touch a lock of this kind";
    EXPECT_EQ(VKfileLock(file.Get(), 3, 0), 0);
    EXPECT_TRUE(OthersCanLock(path)) << "any other mode unlocks";
    ASSERT_EQ(VKfileLock(file.Get(), 1, 0), 0);
    EXPECT_EQ(VKfileUnlockAndClose(file.Release()), 0);
    EXPECT_TRUE(OthersCanLock(path));
}

TEST(VKfileLock, OpenWithLockGivesTheDescriptorEvenWithoutTheLock)
{
    TempDir dir;
    const std::string path = dir.Write("f", "content");
    vktest::LockingProcess other(path);
    const auto begin = std::chrono::steady_clock::now();
    const vk::FileHandle file(VKfileFOpenWithLock(path.c_str(), "r", 0));
    EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::microseconds(99 * 200));
    char text[8] = {};
    EXPECT_EQ(VKfileRead(file.Get(), text, 7), 7);
    EXPECT_STREQ(text, "content");
    EXPECT_EQ(VKfileFOpenWithLock((dir / "missing").c_str(), "r", 0), -1);
}

TEST(VKfileLock, ADirectoryIsLockedThroughAFileInIt)
{
    TempDir dir;
    for (const std::string& name : {dir.Path().string(), dir.Path().string() + "/"}) {
        const int fd = VKfileLockDir(name.c_str());
        ASSERT_GE(fd, 0);
        EXPECT_FALSE(OthersCanLock(dir / "lock"));
        VKfileUnlockDir(fd);
        EXPECT_TRUE(OthersCanLock(dir / "lock"));
    }
    EXPECT_EQ(dir.Read("lock"), "locker");
    struct stat facts = {};
    ASSERT_EQ(VKfileStat((dir / "lock").c_str(), &facts), 0);
    EXPECT_EQ(facts.st_mode & 0777, 0666U);
    EXPECT_EQ(VKfileLockDir((dir / "missing").c_str()), -1);
    EXPECT_EQ(VKfileLockDir(std::string(253, 'd').c_str()), -1);
}

} // namespace
