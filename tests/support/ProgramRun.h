#pragma once

#include "TempDir.h"

#include <cstdio>
#include <string>
#include <sys/wait.h>
#include <vector>

/// What a program wrote and how it ended.
struct ProgramRun
{
    int exitCode = -1;
    std::string out;
    std::string err;

    /// Runs a program of the build folder to its end.
    static ProgramRun Of(const std::string& program, const std::vector<std::string>& arguments)
    {
        const TempDir dir;
        std::string line = "'" VK_BUILD_DIR "/" + program + "'";
        for (const std::string& argument : arguments) {
            line += " '";
            for (const char c : argument)
                line += c == '\'' ? std::string("'\\''") : std::string(1, c);
            line += "'";
        }
        line += " 2>'" + (dir / "err") + "' </dev/null";
        ProgramRun run;
        std::FILE* const pipe = popen(line.c_str(), "r");
        if (pipe == nullptr)
            return run;
        char block[4096];
        while (const std::size_t count = std::fread(block, 1, sizeof block, pipe))
            run.out.append(block, count);
        const int status = pclose(pipe);
        run.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
        run.err = dir.Read("err");
        return run;
    }
};
