#pragma once

#include <functional>
#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>

/// A second process for the tests that need one: runs a function and ends with its result as exit code. It must not
/// use handles that were opened before the fork.
class ChildProcess
{
public:
    explicit ChildProcess(const std::function<int()>& work) : m_pid(fork())
    {
        if (m_pid == 0) {
            int code = 99;
            try {
                code = work();
            } catch (...) {
            }
            _exit(code);
        }
    }
    ~ChildProcess() { Wait(); }
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    /// Waits for the end; the exit code, or -1 when it ended by a signal.
    int Wait()
    {
        if (m_pid <= 0)
            return m_code;
        int status = 0;
        waitpid(m_pid, &status, 0);
        m_pid = -1;
        m_code = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
        return m_code;
    }

private:
    pid_t m_pid;
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
