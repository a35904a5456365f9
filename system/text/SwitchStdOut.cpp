#include "SwitchStdOut.h"

#include <cstdio>
#include <fcntl.h>
#include <iostream>
#include <memory>
#include <unistd.h>

namespace {

void FlushAll()
{
    std::cout.flush();
    std::cerr.flush();
    std::fflush(stdout);
    std::fflush(stderr);
}

/// Puts the file in the stream's place; returns a copy of what stood there, -1 when nothing was changed.
int Switch(int stream, const std::string& path)
{
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "a+"), std::fclose);
    const int saved = file ? fcntl(stream, F_DUPFD_CLOEXEC, 0) : -1;
    if (saved >= 0)
        dup2(fileno(file.get()), stream);
    return saved;
}

void Restore(int stream, int saved)
{
    if (saved < 0)
        return;
    dup2(saved, stream);
    close(saved);
}

} // namespace

SwitchStdOut::SwitchStdOut(const std::string& path)
{
    FlushAll();
    m_savedOutput = Switch(STDOUT_FILENO, path);
    m_savedError = Switch(STDERR_FILENO, path + "_error");
}

SwitchStdOut::~SwitchStdOut()
{
    FlushAll();
    Restore(STDOUT_FILENO, m_savedOutput);
    Restore(STDERR_FILENO, m_savedError);
}
