#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

class IniReaderWriter;
class VKIniReaderWriterEx;

namespace vk {

/// The path of "vklogs.ini" in a configuration directory. Each single backslash of the directory is doubled.
std::string LogConfigPath(const std::string& configDir);

/// The directory "logs" beside the configuration directory, with a slash at its end; with a name, a path in it for a
/// log file of that name that is not in use.
std::string LogFilePath(const std::string& configDir, std::string name);

/// Deletes the files of a directory that match a pattern with "*", and their lock files. False when one cannot be
/// deleted or the directory cannot be read.
bool DeleteLogFiles(const std::string& directory, const std::string& pattern);

/// What "vklogs.ini" says of one logger.
struct LoggerSection
{
    std::string head; ///< with its brackets
    std::string writer;
    std::string level;
    std::vector<std::pair<std::string, std::string>> parameters; ///< all other keys, in their order
};

/// Reads the section of a logger, or the one that all loggers without one share. False, with the cause in VKsystemLog,
/// when the file cannot be read.
bool ReadLoggerSection(const std::string& path, const std::string& logger, LoggerSection& section);

/// Changes "vklogs.ini", each time under an exclusive lock that keeps other processes away. One thread of a process at
/// a time. What fails is false, with the cause in VKsystemLog; the file is then as it was.
class LogConfigFile
{
public:
    explicit LogConfigFile(const std::string& configDir);

    /// Makes the file when it is missing, with a section for this logger, or for "sample" when the name is empty, and
    /// the common one. A file that another process has made meanwhile is completed, never overwritten.
    bool Generate(const std::string& logger, const std::string& logDir);
    /// Adds whatever this logger needs and is not there. Writes nothing when all is well.
    bool Repair(const std::string& logger, const std::string& logDir);
    /// Adds a logger with a section of its own. True when it is there already.
    bool Add(const std::string& logger);
    /// Takes a logger out, deletes its log files, and its section when no other logger uses it.
    bool Remove(const std::string& logger);
    /// Gives a logger's section to another name. False when there is no such logger or the new name is taken.
    bool Rename(const std::string& oldName, const std::string& newName);

private:
    enum class Outcome { Failed, Unchanged, Changed };

    bool Change(const char* operation, const std::function<Outcome(IniReaderWriter&)>& edit) const;
    bool IsComplete(const std::string& logger, const std::string& logDir) const;
    Outcome Complete(IniReaderWriter& ini, const std::string& logger, const std::string& logDir) const;
    bool RepairPath(IniReaderWriter& ini, const std::string& logger, const std::string& logDir) const;
    void CreateDefaultLogger(IniReaderWriter& ini, const std::string& key, const std::string& section, bool addToMain,
                             std::string fileBase, const std::string& logDir) const;
    std::string DirectoryInUse(const std::string& logDir) const;

    std::string m_configDir;
    std::string m_path;
};

} // namespace vk
