#include "VKsysEventLogFileWriter.h"

#include "LockFile.h"
#include "LogGuard.h"
#include "VKioException.h"
#include "VKioFile.h"
#include "VKsystemLog.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <functional>
#include <limits>
#include <memory>
#include <strings.h>
#include <system_error>
#include <sys/stat.h>
#include <vector>

namespace {

constexpr const char* kArchiveName = "VKsysEventLog::Archive";

std::string Numbered(const std::string& path, unsigned int number) { return path + "." + std::to_string(number); }

/// The numbers n from 1 to below `limit` for which "path.n" exists, the greatest first.
std::vector<unsigned int> RotatedNumbers(const std::string& path, unsigned int limit)
{
    namespace fs = std::filesystem;
    const fs::path log(path);
    const std::string prefix = log.filename().string() + ".";
    std::vector<unsigned int> numbers;
    std::error_code error;
    const fs::path folder = log.has_parent_path() ? log.parent_path() : fs::path(".");
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
        const std::string name = entry->path().filename().string();
        if (name.compare(0, prefix.size(), prefix) != 0)
            continue;
        const std::string digits = name.substr(prefix.size());
        const unsigned long number = strtoul(digits.c_str(), nullptr, 10);
        if (number >= 1 && number < limit && std::to_string(number) == digits)
            numbers.push_back(static_cast<unsigned int>(number));
    }
    std::sort(numbers.begin(), numbers.end(), std::greater<>());
    return numbers;
}

/// "%s Archiving %s\n": the last line of a file that is about to be rotated.
bool WriteArchivingLine(const std::string& path)
{
    const std::unique_ptr<FILE, int (*)(FILE*)> file(fopen(path.c_str(), "a"), fclose);
    if (!file)
        return false;
    const time_t now = time(nullptr);
    struct tm local = {};
    localtime_r(&now, &local);
    char date[64];
    strftime(date, sizeof date, "%m/%d/%Y %H:%M:%S", &local);
    fprintf(file.get(), "%s Archiving %s\n", date, path.c_str());
    return true;
}

/// Whether a message lacks a line feed among the white space at its end. An empty message needs none.
bool NeedsLineBreak(const std::string& message)
{
    for (auto c = message.rbegin(); c != message.rend() && isspace(static_cast<unsigned char>(*c)); ++c)
        if (*c == '\n')
            return false;
    return !message.empty();
}

} // namespace

struct VKsysEventLogFileWriter::Parameter
{
    const char* key;
    bool (*set)(VKsysEventLogFileWriter& writer, const std::string& value);
};

const VKsysEventLogFileWriter::Parameter VKsysEventLogFileWriter::kParameters[] = {
    {"numFiles", [](VKsysEventLogFileWriter& w,
                    const std::string& v) { return w.SetNumber(&VKsysEventLogFileWriter::m_uNumFiles, v); }},
    {"bytesPerFiles", [](VKsysEventLogFileWriter& w,
                         const std::string& v) { return w.SetNumber(&VKsysEventLogFileWriter::m_uBytesPerFile, v); }},
    {"filePath", [](VKsysEventLogFileWriter& w, const std::string& v) { return w.setFilePath(v); }},
    {"autoAppend",
     [](VKsysEventLogFileWriter& w, const std::string&) {
         w.setAutoAppend(true); // the value is not looked at, on purpose: the key can only switch it on
         return true;
     }},
    {"perProcessFile",
     [](VKsysEventLogFileWriter& w, const std::string& v) {
         w.setPerProcessFile(strtol(v.c_str(), nullptr, 10) != 0);
         return true;
     }},
};

bool VKsysEventLogFileWriter::setParameter(std::string& key, std::string& value)
{
    for (const Parameter& parameter : kParameters)
        if (strcasecmp(parameter.key, key.c_str()) == 0)
            return parameter.set(*this, value);
    return true;
}

/// Numbers count files and bytes, so one below zero is as useless as zero.
bool VKsysEventLogFileWriter::SetNumber(unsigned int VKsysEventLogFileWriter::*member, const std::string& value)
{
    constexpr long kMost = std::numeric_limits<unsigned int>::max();
    const long number = std::clamp(strtol(value.c_str(), nullptr, 10), 0L, kMost);
    this->*member = static_cast<unsigned int>(number);
    return number != 0;
}

bool VKsysEventLogFileWriter::setFilePath(const std::string& path)
{
    if (path.empty())
        return false;
    try {
        VKioFile file(path);
        file.Open("a+");
        file.Close();
    } catch (const VKioException& error) {
        VKsystemLog::WriteError("VKsysEventLogInterface::setFilePath", __FILE__, "%s", error.ToString().c_str());
        return false;
    }
    m_strFilePath = path;
    std::size_t end = path.rfind('/');
    if (end == std::string::npos)
        end = path.rfind('\\');
    m_strDirectory = end == std::string::npos ? std::string("./") : path.substr(0, end);
    m_bPathAccepted = true;
    return true;
}

bool VKsysEventLogFileWriter::isInitialized()
{
    return m_bPathAccepted && m_uBytesPerFile != 0 && m_uNumFiles != 0 && !m_strFilePath.empty();
}

bool VKsysEventLogFileWriter::operator()(std::string name, LogLevel level, std::string message, int, const char*,
                                         long timestamp)
{
    if (!isInitialized())
        return false;
    return vk::GuardLog("VKsysEventLogFileWriter::DoWork", "Unknown Error", [&] {
        const std::lock_guard<std::mutex> guard(m_lock);
        const std::string path = FileFor(name);
        const LockFile lock(path + ".lock");
        Archive(name);

        std::string text = GetHeader(level, name, timestamp);
        text += message;
        if (m_bAutoAppend && NeedsLineBreak(message))
            text += '\n';
        VKioFile file(path);
        file.Open("a+");
        file.Write(text);
        file.Flush();
        file.Close();
        return true;
    });
}

std::string VKsysEventLogFileWriter::FileFor(const std::string& name) const
{
    if (!m_bPerProcessFile)
        return m_strFilePath;
    std::string file = name;
    std::replace(file.begin(), file.end(), ' ', '_');
    return m_strDirectory + "/" + file + ".txt";
}

std::string VKsysEventLogFileWriter::GetHeader(LogLevel level, const std::string& name, long timestamp) const
{
    std::string header;
    getTimeStamp(timestamp, &header);
    header += ' ';
    if (!m_bPerProcessFile)
        header.append(name).append(1, ' '); // several loggers share the file
    return header.append(getLabel(level)).append(1, ' ');
}

/// Rotates a file that has reached its size. The live file is looked at before a record only, so it can exceed the
/// limit by one.
void VKsysEventLogFileWriter::Archive(const std::string& name) const
{
    const std::string path = FileFor(name);
    struct stat found;
    if (stat(path.c_str(), &found) != 0 || static_cast<unsigned long>(found.st_size) < m_uBytesPerFile)
        return;
    if (!WriteArchivingLine(path)) {
        VKsystemLog::WriteError(kArchiveName, __FILE__, "Can Not Open Log File");
        return;
    }
    ShiftRotatedFiles(path);

    const std::string newest = Numbered(path, 1);
    if (rename(path.c_str(), newest.c_str()) == 0)
        return;
    remove(newest.c_str());
    if (rename(path.c_str(), newest.c_str()) != 0)
        VKsystemLog::WriteError(kArchiveName, __FILE__, "Can not rename log file from '%s' to '%s'", path.c_str(),
                                newest.c_str());
}

void VKsysEventLogFileWriter::ShiftRotatedFiles(const std::string& path) const
{
    remove(Numbered(path, m_uNumFiles).c_str());
    for (const unsigned int number : RotatedNumbers(path, m_uNumFiles)) {
        const std::string old = Numbered(path, number);
        if (rename(old.c_str(), Numbered(path, number + 1).c_str()) == 0)
            remove(old.c_str()); // between two names of one file a rename does nothing
    }
}
