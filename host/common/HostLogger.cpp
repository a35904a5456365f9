#include "HostLogger.h"

#include "Clock.h"
#include "Options.h"

#include <cerrno>
#include <cstring>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace vk {

namespace {

constexpr std::size_t kLongestErrors = 1000; ///< a terminal's share; the file has them all
constexpr off_t kSetAsideAt = 10 * 1024 * 1024;

constexpr CodeText<VKLogInterface::LogLevel> kLabels[] = {
    {VKLogInterface::TRACE, "[TRACE]"}, {VKLogInterface::DEBUG, "[DEBUG]"}, {VKLogInterface::INFO, "[INFO]"},
    {VKLogInterface::WARN, "[WARN]"},   {VKLogInterface::ERROR, "[ERROR]"}, {VKLogInterface::CRITICAL, "[CRITICAL]"},
    {VKLogInterface::FATAL, "[FATAL]"},
};

std::FILE* OpenForAppending(const std::string& file)
{
    struct stat status{};
    if (stat(file.c_str(), &status) == 0 && status.st_size > kSetAsideAt)
        std::rename(file.c_str(), (file + ".1").c_str());
    std::FILE* opened = std::fopen(file.c_str(), "ae");
    if (opened == nullptr)
        throw InputError(file + ": " + std::strerror(errno));
    return opened;
}

} // namespace

HostLogger::HostLogger(const std::string& name, const std::string& file, LogLevel level)
    : m_name(name), m_path(file), m_level(level), m_file(OpenForAppending(file), &std::fclose)
{
}

void HostLogger::EnableThreadIdPrefix(bool enable)
{
    const std::lock_guard guard(m_mutex);
    m_threadPrefix = enable;
}

std::string HostLogger::TakeErrors()
{
    const std::lock_guard guard(m_mutex);
    return std::exchange(m_errors, {});
}

bool HostLogger::Write(LogLevel level, const std::string& message)
{
    const std::lock_guard guard(m_mutex);
    if (level >= ERROR && m_errors.size() < kLongestErrors)
        m_errors += (m_errors.empty() ? "" : "; ") + message;
    if (level < m_level)
        return false;
    std::string line = IsoTime(std::chrono::system_clock::now()) + " " + TextOfCode(kLabels, level) + " ";
    if (m_threadPrefix)
        line += "[TID:" + std::to_string(gettid()) + "] ";
    // Flushed line by line: lines of several processes do not mix, and none is lost in a crash.
    line += message + "\n";
    if (std::ftell(m_file.get()) > kSetAsideAt) {
        try {
            m_file.reset(OpenForAppending(m_path));
        } catch (const InputError&) { // better a file too long than a line lost
        }
    }
    return std::fwrite(line.data(), 1, line.size(), m_file.get()) == line.size() && std::fflush(m_file.get()) == 0;
}

} // namespace vk
