#pragma once

#include <string>

/// Holds a lock on a file of its own for as long as it lives: one holder at a time, among all threads and processes.
/// The file is made when it is missing and stays.
class LockFile
{
public:
    static constexpr int kTries = 2000;
    static constexpr int kPauseMs = 30;

    /// Tries, with pauses of pauseMs milliseconds, until the lock is had: about a minute by default. Throws
    /// VKconException "LockFile Creation Failed" after the last try, or at once when no waiting can help, such as for
    /// lack of rights.
    explicit LockFile(const std::string& path, int tries = kTries, int pauseMs = kPauseMs);
    ~LockFile();
    LockFile(const LockFile&) = delete;
    LockFile& operator=(const LockFile&) = delete;

private:
    bool TryLock(const std::string& path);

    int m_fd = -1;
};
