// The class-wide half of VKsysEventLogInterface: the table of all loggers, and the operations on "vklogs.ini". It
// stands apart because it knows the kinds of loggers, which know the interface.
#include "LogConfigFile.h"
#include "LogGuard.h"
#include "VKconCriticalSection.h"
#include "VKconLock.h"
#include "VKprintf.h"
#include "VKsysEventLogInterface.h"
#include "VKsysEventLogMultiThreaded.h"
#include "VKsysEventLogSingleThreaded.h"

#include <algorithm>
#include <cstdio>

namespace {

constexpr int kMaxLoggers = 15;

using Guard = vk::ScopedSection<VKconLock>;

[[noreturn]] void ThrowMissing(const std::string& what, int line, const char* file)
{
    static thread_local char text[1024];
    if (file)
        snprintf(text, sizeof text, "%s is called before creation @ line [%d] in file [%s].", what.c_str(), line, file);
    else
        snprintf(text, sizeof text, "%s is called before creation.", what.c_str());
    VKsystemLog::WriteError("VKsysEventLogInterface::GetInstance()", __FILE__, "%s", text);
    throw static_cast<char*>(text); // meant: the one place that throws something other than an exception object
}

} // namespace

/// All loggers of the process, by name. The objects belong to the table. The lock also makes the threads of this
/// process take turns at "vklogs.ini", because closing one descriptor of a file drops the locks that another thread has
/// on it.
struct VKsysEventLogInterface::Table
{
    VKconLock masterLock;
    std::pair<std::string, VKsysEventLogInterface*> loggers[kMaxLoggers]; // guarded by masterLock
    int loggersCount = 0;                                                 // guarded by masterLock

    std::pair<std::string, VKsysEventLogInterface*>* Find(const std::string& name)
    {
        for (int i = 0; i < loggersCount; ++i)
            if (loggers[i].first == name)
                return &loggers[i];
        return nullptr;
    }

    /// Gives the place of an object that is being deleted free.
    void Forget(const VKsysEventLogInterface* object)
    {
        const Guard guard(masterLock);
        const auto end = loggers + loggersCount;
        const auto place = std::find_if(loggers, end, [&](const auto& row) { return row.second == object; });
        if (place == end)
            return;
        std::move(place + 1, end, place);
        loggers[--loggersCount] = {};
    }
};

/// At the end of the process queued records are written. Table and objects stay, for whoever still logs then.
struct VKsysEventLogInterface::EndOfProcess
{
    Table& table;

    ~EndOfProcess()
    {
        const Guard guard(table.masterLock);
        for (auto& [name, logger] : table.loggers)
            if (logger)
                logger->Stop();
    }
};

VKsysEventLogInterface::Table& VKsysEventLogInterface::TheTable()
{
    static Table* const table = new Table; // never deleted, see EndOfProcess
    static const EndOfProcess end{*table};
    return *table;
}

VKsysEventLogInterface::~VKsysEventLogInterface() { TheTable().Forget(this); }

std::unique_ptr<VKsysEventLogInterface> VKsysEventLogInterface::MakeByType(LoggerType type)
{
    switch (type) {
    case SINGLE_THREADED:
        return std::make_unique<VKsysEventLogSingleThreaded>();
    case MULTI_THREADED:
        return std::make_unique<VKsysEventLogMultiThreaded>();
    }
    return nullptr;
}

VKsysEventLogInterface* VKsysEventLogInterface::Register(std::unique_ptr<VKsysEventLogInterface> logger)
{
    if (!setVKsysEventLogInterfaceObject(logger->m_strName, logger.get())) {
        VKsystemLog::WriteError("VKsysEventLogInterface::CreateInstance", __FILE__,
                                "No place for logger '%s': there are %d", logger->m_strName.c_str(), kMaxLoggers);
        return nullptr;
    }
    return logger.release(); // the table owns it now
}

VKsysEventLogInterface* VKsysEventLogInterface::CreateInstance(const std::string& name, LoggerType type,
                                                               std::string configDir, const std::string& logDir)
{
    const Guard guard(TheTable().masterLock);
    if (VKsysEventLogInterface* const present = getVKsysEventLogInterfaceObject(name))
        return present;
    if (!checkAndRepairConfigFile(name, configDir, logDir))
        return nullptr;
    auto logger = MakeByType(type);
    if (!logger || !logger->initialize(std::move(configDir), name))
        return nullptr;
    return Register(std::move(logger));
}

VKsysEventLogInterface* VKsysEventLogInterface::CreateInstance(const std::string& name, LoggerType type,
                                                               std::unique_ptr<VKsysEventLogWriterInterface> writer,
                                                               LogLevel level)
{
    const Guard guard(TheTable().masterLock);
    if (VKsysEventLogInterface* const present = getVKsysEventLogInterfaceObject(name))
        return present;
    auto logger = MakeByType(type);
    if (!logger || !writer)
        return nullptr;
    logger->m_strName = name;
    logger->m_pobjWriter = std::move(writer);
    logger->m_level = level;
    return Register(std::move(logger));
}

VKsysEventLogInterface* VKsysEventLogInterface::GetInstance(int line, const char* file)
{
    if (VKsysEventLogInterface* const first = getVKsysEventLogInterfaceObject(0))
        return first;
    ThrowMissing("VKsysEventLogInterface object", line, file);
}

VKsysEventLogInterface* VKsysEventLogInterface::GetInstance(std::string name, int line, const char* file)
{
    if (VKsysEventLogInterface* const found = getVKsysEventLogInterfaceObject(name))
        return found;
    ThrowMissing("VKsysEventLogInterface object for module [" + name + "]", line, file);
}

bool VKsysEventLogInterface::IsInstanceAvailable() { return getVKsysEventLogInterfaceObject(0) != nullptr; }

bool VKsysEventLogInterface::IsInstanceAvailable(const std::string& name)
{
    return getVKsysEventLogInterfaceObject(name) != nullptr;
}

VKsysEventLogInterface* VKsysEventLogInterface::getVKsysEventLogInterfaceObject(int index)
{
    Table& table = TheTable();
    const Guard guard(table.masterLock);
    return index >= 0 && index < table.loggersCount ? table.loggers[index].second : nullptr;
}

VKsysEventLogInterface* VKsysEventLogInterface::getVKsysEventLogInterfaceObject(const std::string& name)
{
    Table& table = TheTable();
    const Guard guard(table.masterLock);
    const auto* const found = table.Find(name);
    return found ? found->second : nullptr;
}

bool VKsysEventLogInterface::setVKsysEventLogInterfaceObject(const std::string& name, VKsysEventLogInterface* object)
{
    Table& table = TheTable();
    const Guard guard(table.masterLock);
    auto* place = table.Find(name);
    if (!place) {
        if (table.loggersCount == kMaxLoggers)
            return false;
        place = &table.loggers[table.loggersCount++];
        place->first = name;
    }
    const std::unique_ptr<VKsysEventLogInterface> before(place->second == object ? nullptr : place->second);
    place->second = object; // so the one before, when it goes, is not found in the table
    return true;
}

// --- "vklogs.ini"

std::string VKsysEventLogInterface::getConfigFileName(const std::string& dir) { return vk::LogConfigPath(dir); }

std::string VKsysEventLogInterface::getLogDirPath(const std::string& dir, std::string name)
{
    return vk::LogFilePath(dir, std::move(name));
}

bool VKsysEventLogInterface::createLogger(const std::string& name, const std::string& dir)
{
    const Guard guard(TheTable().masterLock);
    return vk::LogConfigFile(dir).Add(name);
}

bool VKsysEventLogInterface::deleteLogger(const std::string& name, const std::string& dir)
{
    const Guard guard(TheTable().masterLock);
    return vk::LogConfigFile(dir).Remove(name);
}

bool VKsysEventLogInterface::updateLoggerName(const std::string& oldName, const std::string& newName,
                                              const std::string& dir)
{
    const Guard guard(TheTable().masterLock);
    return vk::LogConfigFile(dir).Rename(oldName, newName);
}

bool VKsysEventLogInterface::getModuleAttributeValues(const std::string& name, std::string& section,
                                                      const std::string& file,
                                                      std::vector<std::pair<std::string, std::string>>& values)
{
    const Guard guard(TheTable().masterLock);
    vk::LoggerSection found;
    if (!vk::ReadLoggerSection(file, name, found)) {
        VKsystemLog::WriteError("VKsysEventLogInterface::getModuleLoggerWriter", __FILE__,
                                "Unable to load/read config/logs.ini file.");
        return false;
    }
    section = found.head;
    values = {{"writer", found.writer}, {"level", found.level}};
    values.insert(values.end(), found.parameters.begin(), found.parameters.end());
    return true;
}

bool VKsysEventLogInterface::generateConfigFile(const std::string& name, const std::string& dir,
                                                const std::string& logDir)
{
    const Guard guard(TheTable().masterLock);
    return vk::LogConfigFile(dir).Generate(name, logDir);
}

bool VKsysEventLogInterface::checkAndRepairConfigFile(const std::string& name, const std::string& dir,
                                                      const std::string& logDir)
{
    const Guard guard(TheTable().masterLock);
    return vk::LogConfigFile(dir).Repair(name, logDir);
}

bool VKsysEventLogInterface::DeleteLoggerFiles(std::string dir, const char* pattern)
{
    return vk::DeleteLogFiles(dir, pattern ? pattern : "");
}

// --- The process in syslog.

void VKsysEventLogInterface::setProcessName(const std::string& name) { VKsystemLog::SetIdentity(name); }

std::string VKsysEventLogInterface::getProcessName() { return VKsystemLog::GetIdentity(); }
