#pragma once

#include "VKsysEventLogWriterInterface.h"

#include <mutex>
#include <string>

/// Writes records as lines of a text file that is rotated by size. Threads are kept apart by a lock of this object,
/// other loggers and processes by a lock file beside the log file. The file is opened and closed for each record, which
/// makes rotation safe for all of them.
class VKsysEventLogFileWriter : public VKsysEventLogWriterInterface
{
public:
    bool setParameter(std::string& key, std::string& value) override;
    bool operator()(std::string name, LogLevel level, std::string message, int line, const char* file,
                    long timestamp) override;
    bool isInitialized() override;

    /// Whether a line break is put behind a message that has none.
    void setAutoAppend(bool append) { m_bAutoAppend = append; }
    /// Each logger writes a file of its own name beside the configured one, and its name is left out of the lines.
    void setPerProcessFile(bool perProcess) { m_bPerProcessFile = perProcess; }
    /// Size in bytes at which a file is rotated before the next record.
    void setNumBytesPerFile(unsigned int bytes) { m_uBytesPerFile = bytes; }
    /// Rotated files that are kept: "path.1" is the newest.
    void setNumOfFiles(unsigned int files) { m_uNumFiles = files; }
    /// False for a path that cannot be opened for writing.
    bool setFilePath(const std::string& path);

private:
    struct Parameter;
    static const Parameter kParameters[];

    bool SetNumber(unsigned int VKsysEventLogFileWriter::*member, const std::string& value);

    std::string FileFor(const std::string& name) const;
    std::string GetHeader(LogLevel level, const std::string& name, long timestamp) const;
    void Archive(const std::string& name) const;
    void ShiftRotatedFiles(const std::string& path) const;

    std::string m_strDirectory;
    std::string m_strFilePath;
    bool m_bPerProcessFile = true;
    bool m_bAutoAppend = true;
    unsigned int m_uBytesPerFile = 0;
    unsigned int m_uNumFiles = 0;
    bool m_bPathAccepted = false;
    std::mutex m_lock; // one record at a time; the settings are made before the first
};
