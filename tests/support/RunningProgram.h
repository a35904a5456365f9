#pragma once

#include "ChildProcess.h"
#include "TempDir.h"
#include "Until.h"

/// A program of the build folder at work in the background; killed at the end of the test.
class RunningProgram
{
public:
    RunningProgram(const std::string& program, std::vector<std::string> arguments)
        : m_process(Call(program, std::move(arguments)), m_dir / "out", m_dir / "err")
    {
    }
    ~RunningProgram() { End(SIGKILL); }

    std::string Out() const { return m_dir.Read("out"); }
    std::string Err() const { return m_dir.Read("err"); }

    /// Waits until it has written this text, for a minute at most.
    bool AwaitOut(const std::string& text) const
    {
        return Until([&] { return Out().find(text) != std::string::npos; });
    }

    /// Sends a signal and waits for the end: the exit code, or the signal's number below zero.
    int End(int signal) { return m_process.End(signal); }
    int Wait() { return m_process.Wait(); }

private:
    static std::vector<std::string> Call(const std::string& program, std::vector<std::string> arguments)
    {
        arguments.insert(arguments.begin(), VK_BUILD_DIR "/" + program);
        return arguments;
    }

    TempDir m_dir;
    ChildProcess m_process;
};

/// What a program wrote and how it ended.
struct ProgramRun
{
    int exitCode;
    std::string out;
    std::string err;

    /// Runs a program of the build folder to its end.
    static ProgramRun Of(const std::string& program, const std::vector<std::string>& arguments)
    {
        RunningProgram running(program, arguments);
        const int exitCode = running.Wait();
        return {exitCode, running.Out(), running.Err()};
    }
};
