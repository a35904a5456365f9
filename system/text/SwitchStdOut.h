#pragma once

#include <string>

/// While it lives, the standard output of the process is appended to a file, and the standard error to a second one
/// with "_error" behind the name: for libraries that print. It works on the whole process: use one at a time, and know
/// that other threads print there too. A file that cannot be opened leaves its stream as it is.
class SwitchStdOut
{
public:
    explicit SwitchStdOut(const std::string& path);
    ~SwitchStdOut();
    SwitchStdOut(const SwitchStdOut&) = delete;
    SwitchStdOut& operator=(const SwitchStdOut&) = delete;

private:
    int m_savedOutput; // copies of the descriptors to go back to, -1 when not switched
    int m_savedError;
};
