#include "LogConfigFile.h"

#include "LogGuard.h"
#include "VKIniReaderWriterEx.h"
#include "VKfile.h"
#include "VKioDirectory.h"
#include "VKioFile.h"
#include "VKprintf.h"
#include "VKsystemError.h"

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <memory>
#include <strings.h>
#include <sys/stat.h>
#include <unistd.h>

namespace vk {

namespace {

const std::string kMain = "[main]";
const std::string kCommon = "[common]";

/// A new section, in the order of its lines. The row without a value is the path of the log file.
struct Default
{
    const char* key;
    const char* value;
};
constexpr Default kDefaults[] = {
    {"writer", "file"}, {"level", "info"},   {"filePath", nullptr},   {"bytesPerFiles", "204800"},
    {"numFiles", "20"}, {"autoAppend", "1"}, {"perProcessFile", "0"},
};

/// Which key holds the path that a writer writes to.
struct PathKey
{
    const char* writer;
    const char* key;
};
constexpr PathKey kPathKeys[] = {
    {"file", "filePath"},
    {"qtdebug", "filePath"},
    {"sqlite", "dbfilename"},
    {"sqlite", "filename"},
};

std::string Bracketed(const std::string& section) { return "[" + section + "]"; }

bool SameWord(const std::string& a, const char* b) { return strcasecmp(a.c_str(), b) == 0; }

std::string SectionOf(const IniReaderWriter& ini, const std::string& logger)
{
    return ini.getKeyValue(&kMain, &logger);
}

/// The head of the section that holds for a logger: a logger without an entry and a section without a writer leave it
/// to the common one.
std::string EffectiveHead(const IniReaderWriter& ini, const std::string& logger)
{
    const std::string section = SectionOf(ini, logger);
    const std::string head = section.empty() ? kCommon : Bracketed(section);
    return ini.getKeyValue(&head, "writer").empty() ? kCommon : head;
}

/// Whether this name comes back from a line "name=section" as it went in.
bool IsName(const std::string& name)
{
    const auto breaksLine = [](char c) { return c == '=' || c == '\n' || c == '\r' || c == '\0'; };
    return !name.empty() && name.size() < 200 && name[0] != '#' && name[0] != '[' &&
           !isspace(static_cast<unsigned char>(name[0])) && std::none_of(name.begin(), name.end(), breaksLine);
}

bool CheckName(const char* operation, const std::string& name)
{
    if (IsName(name))
        return true;
    VKsystemLog::WriteError(operation, __FILE__, "'%s' cannot be the name of a logger", name.c_str());
    return false;
}

bool IsWritableDirectory(const std::string& directory)
{
    struct stat found;
    return stat(directory.c_str(), &found) == 0 && S_ISDIR(found.st_mode) &&
           access(directory.c_str(), W_OK | X_OK) == 0;
}

std::string DirectoryOf(const std::string& path)
{
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? std::string(".") : path.substr(0, slash + 1);
}

std::string FileNameOf(const std::string& path) { return path.substr(path.rfind('/') + 1); }

/// A file with zero bytes in it is no text: rewriting it by lines would destroy what it holds.
bool IsText(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    using Bytes = std::istreambuf_iterator<char>;
    return std::find(Bytes(file), Bytes(), '\0') == Bytes();
}

} // namespace

std::string LogConfigPath(const std::string& configDir)
{
    std::string path;
    for (std::size_t i = 0; i < configDir.size();) {
        const std::size_t end = std::min(configDir.find_first_not_of('\\', i), configDir.size());
        if (end == i)
            path += configDir[i++];
        else
            path.append(end - i == 1 ? 2 : end - i, '\\');
        i = std::max(i, end);
    }
    if (path.empty() || path.back() != '/')
        path += '/';
    return path + "vklogs.ini";
}

std::string LogFilePath(const std::string& configDir, std::string name)
{
    const std::string directory = configDir.substr(0, configDir.rfind("/config")) + "/logs/";
    if (name.empty())
        return directory;
    std::replace(name.begin(), name.end(), ' ', '_');
    std::string path = directory + name + ".txt";
    for (int number = 1; VKioFile::IsExisting(path); ++number)
        path = directory + name + "." + std::to_string(number) + ".txt";
    return path;
}

bool DeleteLogFiles(const std::string& directory, const std::string& pattern)
{
    return GuardLog("VKsysEventLogInterface::DeleteLoggerFiles", "Unknown error", [&] {
        bool all = true;
        for (const std::string& wanted : {pattern, pattern + ".lock"}) {
            VKioFileList files;
            VKioDirectory::GetFiles(directory, files, wanted, 0, 0);
            for (VKioFile* const file : files)
                all = file->DeleteFile() && all;
            VKioFile::CleanFileList(files);
        }
        return all;
    });
}

bool ReadLoggerSection(const std::string& path, const std::string& logger, LoggerSection& section)
{
    return GuardLog("VKsysEventLogInterface::ReadLoggerSection", "Unknown error", [&] {
        VKIniReaderWriterEx ini(path, true, true);
        ini.open(false);
        ini.lock(true);
        ini.read();
        if (!ini.isFileLoaded())
            return false;

        section.head = EffectiveHead(ini, logger);
        section.writer = ini.getKeyValue(&section.head, "writer");
        section.level = ini.getKeyValue(&section.head, "level");
        section.parameters.clear();
        std::string key;
        std::string value;
        for (int i = 0; ini.getKeyValue(&section.head, i, key, value, IniReaderWriter::Node::KeyValue); ++i) {
            if (!key.empty() && !SameWord(key, "writer") && !SameWord(key, "level"))
                section.parameters.emplace_back(key, value);
            key.clear();
        }
        return true;
    });
}

LogConfigFile::LogConfigFile(const std::string& configDir) : m_configDir(configDir), m_path(LogConfigPath(configDir)) {}

/// Runs an edit on the file under an exclusive lock and writes what it changed. The file is read under that lock, since
/// another process may just have written it.
bool LogConfigFile::Change(const char* operation, const std::function<Outcome(IniReaderWriter&)>& edit) const
{
    return GuardLog(operation, "Unknown error", [&] {
        if (!IsText(m_path)) {
            VKsystemLog::WriteError(operation, __FILE__, "%s is not a text file and is left as it is", m_path.c_str());
            return false;
        }
        VKIniReaderWriterEx ini(m_path, true, true);
        ini.open(false);
        ini.lock(false);
        ini.read();
        const Outcome outcome = edit(ini);
        if (outcome == Outcome::Changed)
            return ini.write();
        return outcome == Outcome::Unchanged;
    });
}

bool LogConfigFile::Generate(const std::string& logger, const std::string& logDir)
{
    constexpr const char* kName = "VKsysEventLogInterface::generateConfigFile";
    const std::string name = logger.empty() ? std::string("sample") : logger;
    if (!CheckName(kName, name))
        return false;
    // Not with mode "w+": two processes that start at once would each empty what the other has just written.
    const int descriptor = VKfileFOpen(m_path.c_str(), "a+");
    if (descriptor < 0) {
        VKsystemLog::WriteError(kName, __FILE__, "Cannot create %s: %s", m_path.c_str(), VKgetLastError().c_str());
        return false;
    }
    VKfileClose(descriptor);
    return Change(kName, [&](IniReaderWriter& ini) { return Complete(ini, name, logDir); });
}

bool LogConfigFile::Repair(const std::string& logger, const std::string& logDir)
{
    constexpr const char* kName = "VKsysEventLogInterface::checkAndRepairConfigFile";
    if (logger.empty())
        return true;
    if (!CheckName(kName, logger))
        return false;
    if (!VKioFile::IsExisting(m_path))
        return Generate(logger, logDir);

    bool complete = false;
    const bool readable = GuardLog(kName, "Unknown error", [&] {
        complete = IsComplete(logger, logDir);
        return true;
    });
    if (!readable || complete)
        return readable;
    return Change(kName, [&](IniReaderWriter& ini) { return Complete(ini, logger, logDir); });
}

/// Whether nothing of what Complete adds is missing; looks under a shared lock.
bool LogConfigFile::IsComplete(const std::string& logger, const std::string& logDir) const
{
    VKIniReaderWriterEx ini(m_path, true, true);
    ini.open(false);
    ini.lock(true);
    ini.read();
    const std::string section = SectionOf(ini, logger);
    return !section.empty() && ini.isHeadPresent(Bracketed(section)) && ini.isHeadPresent(kCommon) &&
           !RepairPath(ini, logger, logDir);
}

LogConfigFile::Outcome LogConfigFile::Complete(IniReaderWriter& ini, const std::string& logger,
                                               const std::string& logDir) const
{
    bool changed = ini.createNewHead(kMain, "");
    std::string section = SectionOf(ini, logger);
    if (section.empty()) {
        section = logger + "_logger";
        ini[kMain][logger] = section;
        changed = true;
    }
    if (!ini.isHeadPresent(Bracketed(section))) {
        CreateDefaultLogger(ini, logger, section, false, "", logDir);
        changed = true;
    }
    if (!ini.isHeadPresent(kCommon)) {
        CreateDefaultLogger(ini, "common", "common", false, "common_logs", logDir);
        changed = true;
    }
    changed = RepairPath(ini, logger, logDir) || changed;
    return changed ? Outcome::Changed : Outcome::Unchanged;
}

/// A path in a directory that cannot be written to, as after a move of the installation, is moved to the log directory
/// in use. One that can be written to is the operator's choice and stays. True when the path was changed.
bool LogConfigFile::RepairPath(IniReaderWriter& ini, const std::string& logger, const std::string& logDir) const
{
    const std::string inUse = DirectoryInUse(logDir);
    const std::string head = EffectiveHead(ini, logger);
    const std::string writer = ini.getKeyValue(&head, "writer");
    for (const PathKey& row : kPathKeys) {
        if (!SameWord(writer, row.writer))
            continue;
        const std::string path = ini.getKeyValue(&head, row.key);
        const bool optional = path.empty() && SameWord(writer, "sqlite");
        if (optional || (!path.empty() && IsWritableDirectory(DirectoryOf(path))))
            continue;
        const std::string usable = inUse + (path.empty() ? logger + "_log.txt" : FileNameOf(path));
        if (usable == path || !IsWritableDirectory(inUse))
            continue;
        ini[head][row.key] = usable;
        return true;
    }
    return false;
}

std::string LogConfigFile::DirectoryInUse(const std::string& logDir) const
{
    return logDir.empty() ? LogFilePath(m_configDir, "") : logDir + "/";
}

void LogConfigFile::CreateDefaultLogger(IniReaderWriter& ini, const std::string& key, const std::string& section,
                                        bool addToMain, std::string fileBase, const std::string& logDir) const
{
    if (fileBase.empty())
        fileBase = key;
    const std::string directory = DirectoryInUse(logDir);
    mkdir(directory.c_str(), 0777); // the one level that a fresh installation may lack
    const std::string path = logDir.empty() ? LogFilePath(m_configDir, fileBase) : directory + fileBase + "_log.txt";
    if (addToMain)
        ini[kMain][key] = section;
    IniReaderWriter::Node& head = ini[Bracketed(section)];
    for (const Default& row : kDefaults)
        head[row.key] = row.value ? std::string(row.value) : path;

    // A new logger begins with an empty file, whatever was there.
    const std::unique_ptr<FILE, int (*)(FILE*)> file(fopen(path.c_str(), "w"), fclose);
    if (!file)
        VKsystemLog::WriteError("VKsysEventLogInterface::createDefaultLogger", __FILE__, "Cannot create %s: %s",
                                path.c_str(), VKgetLastError().c_str());
}

bool LogConfigFile::Add(const std::string& logger)
{
    constexpr const char* kName = "VKsysEventLogInterface::createLogger";
    if (!CheckName(kName, logger))
        return false;
    return Change(kName, [&](IniReaderWriter& ini) {
        if (ini.isKeyPresent(&kMain, &logger))
            return Outcome::Unchanged;
        std::string section = logger + "_logger";
        for (int number = 1; ini.isValuePresentInSection(kMain, section); ++number)
            section = printfToString("%s(%02d)_logger", logger.c_str(), number);
        CreateDefaultLogger(ini, logger, section, true, "", "");
        return Outcome::Changed;
    });
}

bool LogConfigFile::Remove(const std::string& logger)
{
    std::string path;
    const bool removed = Change("VKsysEventLogInterface::deleteLogger", [&](IniReaderWriter& ini) {
        const std::string section = SectionOf(ini, logger);
        if (section.empty())
            return Outcome::Failed;
        const std::string head = Bracketed(section);
        path = ini.getKeyValue(&head, "filePath");
        ini.removeKey(&kMain, &logger);
        // The common section serves loggers that are not named anywhere.
        if (!ini.isValuePresentInSection(kMain, section) && !SameWord(head, kCommon.c_str()))
            ini.removeSection(head);
        return Outcome::Changed;
    });
    if (removed && !FileNameOf(path).empty())
        DeleteLogFiles(DirectoryOf(path), FileNameOf(path) + "*");
    return removed;
}

bool LogConfigFile::Rename(const std::string& oldName, const std::string& newName)
{
    constexpr const char* kName = "VKsysEventLogInterface::updateLoggerName";
    if (!CheckName(kName, newName))
        return false;
    return Change(kName, [&](IniReaderWriter& ini) {
        const std::string section = SectionOf(ini, oldName);
        const bool taken = ini.isKeyPresent(&kMain, &newName) && !SameWord(oldName, newName.c_str());
        if (section.empty() || taken)
            return Outcome::Failed;
        ini.removeKey(&kMain, &oldName);
        ini[kMain][newName] = section;
        return Outcome::Changed;
    });
}

} // namespace vk
