#include "VKprocess.h"

#include "VKstringTokens.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

extern char** environ;

namespace {

constexpr int kNoSuchProgram = 127;
constexpr int kEndedBySignal = 128;

int WaitFor(pid_t child)
{
    int status = 0;
    while (waitpid(child, &status, 0) < 0)
        if (errno != EINTR)
            return -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : kEndedBySignal + WTERMSIG(status);
}

/// What a child is to do between fork and exec.
class SpawnActions
{
public:
    SpawnActions() { posix_spawn_file_actions_init(&m_actions); }
    ~SpawnActions() { posix_spawn_file_actions_destroy(&m_actions); }
    SpawnActions(const SpawnActions&) = delete;
    SpawnActions& operator=(const SpawnActions&) = delete;
    posix_spawn_file_actions_t* get() { return &m_actions; }

private:
    posix_spawn_file_actions_t m_actions;
};

/// 0 and the child, or an error number.
int Spawn(std::vector<std::string> arguments, SpawnActions& actions, pid_t& child)
{
    std::vector<char*> pointers;
    for (std::string& argument : arguments)
        pointers.push_back(argument.data());
    pointers.push_back(nullptr);
    return posix_spawnp(&child, pointers[0], actions.get(), nullptr, pointers.data(), environ);
}

std::string ReadAll(int descriptor)
{
    std::string all;
    std::array<char, 4096> piece;
    for (;;) {
        const ssize_t count = read(descriptor, piece.data(), piece.size());
        if (count > 0)
            all.append(piece.data(), static_cast<std::size_t>(count));
        else if (count == 0 || errno != EINTR)
            return all;
    }
}

void SendStreamsToNull()
{
    const int null = open("/dev/null", O_RDWR | O_CLOEXEC);
    if (null < 0)
        return;
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        dup2(null, stream);
    if (null > STDERR_FILENO)
        close(null);
}

} // namespace

int VKsystem(const char* command)
{
    if (!command)
        return -1;
    SpawnActions actions;
    pid_t child = -1;
    return Spawn({"/bin/sh", "-c", command}, actions, child) == 0 ? WaitFor(child) : -1;
}

int systemEx(const std::string& commandLine, std::string& output)
{
    output.clear();
    std::vector<std::string> arguments = BuildCommandLineArguments(commandLine);
    int ends[2];
    if (arguments.empty() || pipe2(ends, O_CLOEXEC) != 0)
        return -1;
    SpawnActions actions;
    posix_spawn_file_actions_adddup2(actions.get(), ends[1], STDOUT_FILENO);
    pid_t child = -1;
    const int error = Spawn(std::move(arguments), actions, child);
    close(ends[1]);
    if (error == 0)
        output = ReadAll(ends[0]);
    close(ends[0]);
    if (error != 0)
        return error == ENOENT ? kNoSuchProgram : -1;
    return WaitFor(child);
}

bool IsProcessRunning(pid_t process) { return process > 0 && (kill(process, 0) == 0 || errno == EPERM); }

int VKstartDaemon(bool changeToRoot, bool closeStreams)
{
    std::fflush(nullptr); // else both would write what is buffered
    const pid_t child = fork();
    if (child < 0)
        return -1;
    if (child > 0)
        _exit(0);
    if (setsid() < 0)
        return -1;
    if (changeToRoot && chdir("/") != 0)
        return -1;
    if (closeStreams)
        SendStreamsToNull();
    return 0;
}

void closeallfiles(int lowest) { closefrom(lowest); }
