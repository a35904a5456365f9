#pragma once

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <functional>
#include <string>
#include <sys/prctl.h>
#include <sys/types.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>
#include <vector>

/// A second process for the tests that need one. The object's end waits for it.
class ChildProcess
{
public:
    /// Runs a function and ends with its result as exit code. It must not use handles that were opened before.
    explicit ChildProcess(const std::function<int()>& work)
    {
        if (!IsChild())
            return;
        int code = 99;
        try {
            code = work();
        } catch (...) {
        }
        _exit(code);
    }
    /// Runs a program, found as a shell finds it. It reads nothing, and what it says goes into files.
    ChildProcess(std::vector<std::string> words, const std::string& out, const std::string& err)
    {
        std::vector<char*> arguments; // made before the fork: other threads may hold the heap's locks then
        for (std::string& word : words)
            arguments.push_back(word.data());
        arguments.push_back(nullptr);
        if (!IsChild())
            return;
        constexpr int kAnew = O_WRONLY | O_CREAT | O_TRUNC | O_APPEND | O_CLOEXEC;
        dup2(open("/dev/null", O_RDONLY | O_CLOEXEC), STDIN_FILENO);
        dup2(open(out.c_str(), kAnew, 0600), STDOUT_FILENO);
        dup2(open(err.c_str(), kAnew, 0600), STDERR_FILENO);
        execvp(arguments[0], arguments.data());
        _exit(127);
    }
    ~ChildProcess() { Wait(); }
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    void Send(int signal) const
    {
        if (m_pid > 0)
            kill(m_pid, signal);
    }
    /// Sends a signal and waits for the end: as Wait.
    int End(int signal)
    {
        Send(signal);
        return Wait();
    }
    bool HasEnded()
    {
        Reap(WNOHANG);
        return m_pid <= 0;
    }
    /// Waits for the end: the exit code, or the signal's number below zero.
    int Wait()
    {
        Reap(0);
        return m_code;
    }

private:
    bool IsChild()
    {
        m_pid = fork();
        if (m_pid < 0)
            throw std::system_error(errno, std::generic_category(), "fork");
        if (m_pid == 0)
            prctl(PR_SET_PDEATHSIG, SIGKILL); // it must not outlive a test program that crashed
        return m_pid == 0;
    }
    void Reap(int options)
    {
        int status = 0;
        if (m_pid <= 0 || waitpid(m_pid, &status, options) != m_pid)
            return;
        m_pid = -1;
        m_code = WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
    }

    pid_t m_pid = -1;
    int m_code = -1;
};

/// A pipe on which one process tells another that it got somewhere.
class Signal
{
public:
    Signal()
    {
        if (pipe(m_ends) != 0)
            m_ends[0] = m_ends[1] = -1;
    }
    ~Signal()
    {
        close(m_ends[0]);
        close(m_ends[1]);
    }
    Signal(const Signal&) = delete;
    Signal& operator=(const Signal&) = delete;

    void Send() const { [[maybe_unused]] const ssize_t sent = write(m_ends[1], "x", 1); }
    bool Await() const
    {
        char byte;
        return read(m_ends[0], &byte, 1) == 1;
    }

private:
    int m_ends[2];
};
