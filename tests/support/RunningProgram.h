#pragma once

#include "TempDir.h"

#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <string>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

/// A program of the build folder at work in the background; killed at the end of the test.
class RunningProgram
{
public:
    RunningProgram(const std::string& program, std::vector<std::string> arguments)
    {
        arguments.insert(arguments.begin(), VK_BUILD_DIR "/" + program);
        std::vector<char*> words;
        for (std::string& argument : arguments)
            words.push_back(argument.data());
        words.push_back(nullptr);
        const std::string out = m_dir / "out";
        const std::string err = m_dir / "err";
        m_pid = fork();
        if (m_pid != 0)
            return;
        dup2(open(out.c_str(), O_CREAT | O_WRONLY, 0600), STDOUT_FILENO);
        dup2(open(err.c_str(), O_CREAT | O_WRONLY, 0600), STDERR_FILENO);
        execv(words[0], words.data());
        _exit(127);
    }
    ~RunningProgram() { End(SIGKILL); }
    RunningProgram(const RunningProgram&) = delete;
    RunningProgram& operator=(const RunningProgram&) = delete;

    std::string Out() const { return m_dir.Read("out"); }
    std::string Err() const { return m_dir.Read("err"); }

    /// Waits until it has written this text, for a minute at most.
    bool AwaitOut(const std::string& text) const
    {
        return Await([&] { return Out().find(text) != std::string::npos; });
    }

    /// Sends a signal and waits for the end: the exit code, or the signal's number below zero.
    int End(int signal)
    {
        if (m_pid > 0)
            kill(m_pid, signal);
        return Wait();
    }

    int Wait()
    {
        if (m_pid <= 0)
            return m_code;
        int status = 0;
        waitpid(m_pid, &status, 0);
        m_pid = -1;
        m_code = WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
        return m_code;
    }

    /// Looks every few milliseconds whether something is so, for a minute at most.
    template <class Condition> static bool Await(const Condition& condition)
    {
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(60);
        while (!condition()) {
            if (std::chrono::steady_clock::now() > end)
                return false;
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
        return true;
    }

private:
    TempDir m_dir;
    pid_t m_pid = -1;
    int m_code = -1;
};
