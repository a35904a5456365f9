#include "VKprocess.h"

#include "ChildProcess.h"
#include "SwitchStdOut.h"
#include "TempDir.h"
#include "VKnetwork.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

TEST(Process, CommandsRunInAShellAndProgramsWithoutOne)
{
    EXPECT_EQ(VKsystem("exit 7"), 7);
    EXPECT_EQ(VKsystem("kill -TERM $$"), 128 + SIGTERM);
    EXPECT_EQ(VKsystem(nullptr), -1);

    std::string output("before");
    EXPECT_EQ(systemEx("printf '%s|' 'a b' $HOME ; rm", output), 0);
    EXPECT_EQ(output, "a b|$HOME|;|rm|");
    EXPECT_EQ(systemEx("sh -c 'exit 3'", output), 3);
    EXPECT_EQ(output, "");
    EXPECT_EQ(systemEx("/no/such/program", output), 127);
    EXPECT_EQ(systemEx("  ", output), -1);
    EXPECT_EQ(systemEx("head -c 200000 /dev/zero", output), 0);
    EXPECT_EQ(output.size(), 200000u);
}

TEST(Process, OnlyLivingProcessesRun)
{
    EXPECT_TRUE(IsProcessRunning(getpid()));
    EXPECT_TRUE(IsProcessRunning(1)) << "somebody else's";
    EXPECT_FALSE(IsProcessRunning(0));
    EXPECT_FALSE(IsProcessRunning(-1));
    const pid_t child = fork();
    if (child == 0)
        _exit(0);
    waitpid(child, nullptr, 0);
    EXPECT_FALSE(IsProcessRunning(child));
}

TEST(Process, ADaemonHasItsOwnSessionTheRootAndNoStreams)
{
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    ChildProcess parent([&] {
        VKstartDaemon(true, true);
        const bool leads = getsid(0) == getpid();
        const bool atRoot = std::filesystem::current_path() == "/";
        const bool silent = std::filesystem::read_symlink("/proc/self/fd/1") == "/dev/null";
        const char answer = leads && atRoot && silent ? 'y' : 'n';
        return write(ends[1], &answer, 1) == 1 ? 0 : 1;
    });
    close(ends[1]);
    EXPECT_EQ(parent.Wait(), 0) << "the parent of the daemon ends with 0";
    pollfd answered{ends[0], POLLIN, 0};
    EXPECT_EQ(poll(&answered, 1, 10000), 1);
    char answer = '?';
    EXPECT_EQ(read(ends[0], &answer, 1), 1);
    EXPECT_EQ(answer, 'y');
    close(ends[0]);
}

TEST(Process, AllFilesAreClosedFromTheLowestOn)
{
    const auto closeAll = [] {
        const int open = ::open("/dev/null", O_RDONLY);
        closeallfiles(3);
        _exit(fcntl(open, F_GETFD) < 0 && fcntl(2, F_GETFD) >= 0 ? 0 : 1);
    };
    EXPECT_EXIT(closeAll(), testing::ExitedWithCode(0), "");
}

TEST(Process, StandardStreamsGoToFilesForAWhile)
{
    const TempDir directory;
    const std::string path = directory.Write("out", "before\n");
    {
        const SwitchStdOut here(path);
        std::printf("printed\n");
        std::fprintf(stderr, "failed\n");
    }
    EXPECT_EQ(directory.Read("out"), "before\nprinted\n");
    EXPECT_EQ(directory.Read("out_error"), "failed\n");

    testing::internal::CaptureStdout();
    {
        const SwitchStdOut nowhere(directory / "missing/out");
        std::printf("kept");
        std::fflush(stdout);
    }
    std::printf(" on");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "kept on");
}

TEST(Process, TheMarkerFileTellsAStandbyServer)
{
    const TempDir directory;
    const std::string path = directory / "marker";
    EXPECT_FALSE(VKutilAmIPHS(path.c_str()));
    EXPECT_FALSE(VKutilAmIPHS(nullptr));
    const std::pair<const char*, bool> contents[] = {{"1\n", true},  {" yes", true}, {"", false},     {"\n1", false},
                                                     {"0\n", false}, {"No", false},  {"FALSE", false}};
    for (const auto& [content, standby] : contents) {
        directory.Write("marker", content);
        EXPECT_EQ(VKutilAmIPHS(path.c_str()), standby) << content;
    }
}

TEST(Network, AddressesAreVerifiedThoseOfThisMachineToo)
{
    for (const char* good : {"127.0.0.1", "255.255.255.255", "::1", "fe80::1"})
        EXPECT_TRUE(VKutilVerifyIP(good) && VKsysUtility::VerifyIP(good)) << good;
    for (const char* bad : {"", "1.2.3", "1.2.3.256", "1.2.3.4 ", "host", "1.2.3.4.5", "01.2.3.4", ":::"})
        EXPECT_FALSE(VKutilVerifyIP(bad) || VKsysUtility::VerifyIP(bad)) << bad;
    EXPECT_FALSE(VKutilVerifyIP(nullptr));
    EXPECT_FALSE(VKsysUtility::VerifyIP(std::string("1.2.3.4\0x", 9)));

    const std::string host = VKutilGetLocalHostIp();
    EXPECT_TRUE(VKutilVerifyIP(host.c_str())) << host;
    const std::vector<std::string> all = VKutilGetLocalIps();
    for (const std::string& address : all)
        EXPECT_TRUE(VKutilVerifyIP(address.c_str())) << address;
    EXPECT_EQ(host, all.empty() || all[0].find(':') != std::string::npos ? "127.0.0.1" : all[0]);
}

} // namespace
