#include "VKSQLite3QueueIntent.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

#include "VKDBexception.h"
#include "VKSQLite3Retry.h"

namespace vk {

namespace {

constexpr const char* kName = "queue_metabase.sdb-intent";

/// Those that wait for a turn look again after so many microseconds, twice as long each time: a short turn is soon
/// followed by the next, and many that wait for long must not keep the one that works from its processor.
constexpr unsigned kFirstPause = 200;
constexpr unsigned kLongestPause = 1600;
constexpr unsigned kLongestWait = 120'000'000;

} // namespace

SQLite3QueueIntent::~SQLite3QueueIntent()
{
    if (m_iFile >= 0)
        close(m_iFile);
}

void SQLite3QueueIntent::RequireDone(bool done, const char* what) const
{
    if (!done)
        throw VKDBexception(DbError::General, __FILE__, __LINE__,
                            "The message file [" + m_strPath + "] cannot be " + what + ".",
                            std::generic_category().message(errno));
}

/// Looking again and again lets whoever has just worked go on while its pages are fresh, and ends: one that was stopped in
/// its turn must not keep all others for ever.
void SQLite3QueueIntent::TakeTurn(const std::string& directory)
{
    Open(directory + "/" + kName);
    unsigned pause = 0;
    for (unsigned waited = 0; flock(m_iFile, LOCK_EX | LOCK_NB) != 0; waited += pause) {
        if (errno != EWOULDBLOCK && errno != EINTR)
            return;
        if (waited >= kLongestWait)
            throw VKDBexception(DbError::General, __FILE__, __LINE__,
                                "Unable to start a transaction on [" + directory + "]: it is in use.",
                                "another process has kept its turn for two minutes");
        pause = std::clamp(2 * pause, kFirstPause, kLongestPause);
        RetryPause(pause);
    }
    m_bAlone = true;
}

void SQLite3QueueIntent::EndTurn() noexcept
{
    m_bAlone = false;
    flock(m_iFile, LOCK_UN);
}

/// Whoever shares the queue must mean the same file, also when its directory was moved or mounted again.
void SQLite3QueueIntent::Open(const std::string& path)
{
    m_strPath = path;
    struct stat opened{};
    struct stat named{};
    if (m_iFile >= 0 && (fstat(m_iFile, &opened) != 0 || stat(path.c_str(), &named) != 0 ||
                         opened.st_ino != named.st_ino || opened.st_dev != named.st_dev))
        close(std::exchange(m_iFile, -1));
    if (m_iFile < 0)
        m_iFile = open(path.c_str(), O_RDWR | O_CREAT | O_APPEND | O_CLOEXEC, 0666);
    RequireDone(m_iFile >= 0, "opened");
}

std::size_t SQLite3QueueIntent::Size() const
{
    struct stat facts{};
    RequireDone(fstat(m_iFile, &facts) == 0, "read");
    return static_cast<std::size_t>(facts.st_size);
}

SQLite3QueueIntent::Head SQLite3QueueIntent::ReadHead() const
{
    constexpr std::size_t kNumberAndLetter = 32;
    const std::string text = ReadBytes(kNumberAndLetter);
    const std::size_t end = text.find('\n');
    if (end == std::string::npos)
        return {};
    return {std::atol(text.c_str()), end + 1 < text.size() ? text[end + 1] : '\0'};
}

std::string SQLite3QueueIntent::Read() const
{
    std::string text = ReadBytes(Size());
    text.resize(text.rfind('\n') + 1);
    return text;
}

std::string SQLite3QueueIntent::ReadBytes(std::size_t most) const
{
    std::string text(most, '\0');
    std::size_t size = 0;
    while (size < most) {
        const ssize_t count = pread(m_iFile, text.data() + size, most - size, static_cast<off_t>(size));
        RequireDone(count >= 0 || errno == EINTR, "read");
        if (count == 0)
            break;
        size += count > 0 ? static_cast<std::size_t>(count) : 0;
    }
    text.resize(size);
    return text;
}

void SQLite3QueueIntent::Append(const std::string& text)
{
    std::size_t written = 0;
    while (written < text.size()) {
        const ssize_t count = write(m_iFile, text.data() + written, text.size() - written);
        RequireDone(count > 0 || errno == EINTR, "written");
        written += count > 0 ? static_cast<std::size_t>(count) : 0;
    }
}

void SQLite3QueueIntent::Empty() { RequireDone(ftruncate(m_iFile, 0) == 0, "emptied"); }

void SQLite3QueueIntent::TryToEmpty() noexcept
{
    [[maybe_unused]] const int ignored = ftruncate(m_iFile, 0);
}

} // namespace vk
