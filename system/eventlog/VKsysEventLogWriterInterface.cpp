#include "VKsysEventLogWriterInterface.h"

#include "VKField.h"
#include "VKprintf.h"

#include <ctime>

namespace {

using Level = VKLogInterface::LogLevel;

constexpr vk::CodeText<Level> kLevelNames[] = {
    {Level::NONE, "NONE"}, {Level::TRACE, "TRACE"}, {Level::DEBUG, "DEBUG"},       {Level::INFO, "INFO"},
    {Level::WARN, "WARN"}, {Level::ERROR, "ERROR"}, {Level::CRITICAL, "CRITICAL"}, {Level::FATAL, "FATAL"},
};

constexpr vk::CodeText<Level> kLevelWords[] = {
    {Level::TRACE, "trace"},      {Level::DEBUG, "debug"},    {Level::INFO, "info"},   {Level::INFO, "infor"},
    {Level::INFO, "information"}, {Level::WARN, "warn"},      {Level::WARN, "warni"},  {Level::WARN, "warning"},
    {Level::ERROR, "error"},      {Level::CRITICAL, "criti"}, {Level::FATAL, "fatal"}, {Level::CRITICAL, "critical"},
};

} // namespace

VKsysEventLogWriterInterface::VKsysEventLogWriterInterface()
{
    for (const auto& row : kLevelNames)
        if (row.code != Level::NONE)
            m_labels.emplace(row.code, std::string("[") + row.text + "]");
}

VKsysEventLogWriterInterface::~VKsysEventLogWriterInterface() = default;

VKLogInterface::LogLevel VKsysEventLogWriterInterface::getLogLevel(int level)
{
    return level >= Level::NONE && level <= Level::FATAL ? static_cast<LogLevel>(level) : Level::INFO;
}

VKLogInterface::LogLevel VKsysEventLogWriterInterface::getLogLevel(const std::string& word, bool unknownIsNone)
{
    return vk::CodeOfText(kLevelWords, word, unknownIsNone ? Level::NONE : Level::WARN, vk::Case::Ignored);
}

std::string VKsysEventLogWriterInterface::getLogLevelString(int level)
{
    return vk::TextOfCode(kLevelNames, getLogLevel(level));
}

long VKsysEventLogWriterInterface::getTimeStamp(long seconds, std::string* text)
{
    const time_t moment = seconds == 0 ? time(nullptr) : seconds;
    if (text) {
        struct tm local = {};
        localtime_r(&moment, &local);
        *text = printfToString("%02d/%02d/%d %02d:%02d:%02d", local.tm_mon + 1, local.tm_mday, local.tm_year + 1900,
                               local.tm_hour, local.tm_min, local.tm_sec);
    }
    return moment;
}

std::string VKsysEventLogWriterInterface::getLabel(LogLevel level) const
{
    const auto found = m_labels.find(level);
    return found == m_labels.end() ? std::string() : found->second;
}
