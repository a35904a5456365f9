#pragma once

#include <string>

namespace vk {

/// The file in which a queue's processes tell what they are about to change, and whose lock is a process's turn on the
/// queue. Its first line is the number of the transaction. Failures are VKDBexception that name the file.
/// One object serves one thread.
class SQLite3QueueIntent
{
public:
    SQLite3QueueIntent() = default;
    ~SQLite3QueueIntent();
    SQLite3QueueIntent(const SQLite3QueueIntent&) = delete;
    SQLite3QueueIntent& operator=(const SQLite3QueueIntent&) = delete;

    /// Waits for a turn, two minutes at most, then throws. Opens the file, anew when the one of its name is another by
    /// now. In a place that knows no such locks all have a turn at once: IsAlone tells.
    void TakeTurn(const std::string& directory);
    void EndTurn() noexcept;
    bool IsAlone() const { return m_bAlone; }

    bool IsEmpty() const { return Size() == 0; }
    /// The number of the transaction, 0 without a whole line of it, and the letter behind it, 0 without one.
    struct Head
    {
        long number = 0;
        char letter = 0;
    };
    Head ReadHead() const;
    /// Without the last line when that has no end: it was being written when its process died.
    std::string Read() const;

    void Append(const std::string& text);
    void Empty();
    /// The same where a failure does not matter.
    void TryToEmpty() noexcept;

private:
    void Open(const std::string& path);
    std::size_t Size() const;
    std::string ReadBytes(std::size_t most) const;
    void RequireDone(bool done, const char* what) const;

    std::string m_strPath;
    int m_iFile = -1; ///< -1 until the first turn
    bool m_bAlone = false;
};

} // namespace vk
