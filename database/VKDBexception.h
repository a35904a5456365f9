#pragma once

#include <exception>
#include <string>

/// What the storage of an entity throws. The error code is the backend's own result code (an SQLite result code, an
/// ODBC native code) or one of the codes of `vk::DbError`. Copyable; carries no reference to the database it came from.
class VKDBexception : public std::exception
{
public:
    VKDBexception(int errorCode, const std::string& message);
    VKDBexception(int errorCode, const std::string& file, int line, const std::string& message);
    VKDBexception(int errorCode, const std::string& file, int line, const std::string& message,
                  const std::string& sysMsg);
    ~VKDBexception() override;

    /// The message, with the backend's own words behind it, so that a general handler says what failed and why.
    const char* what() const noexcept override { return m_strWhat.c_str(); }

    /// Everything in one line: code (hexadecimal), file, line, message, system message.
    virtual std::string ToString() const;

    const std::string& GetMsg() const { return m_strMessage; }
    const std::string& GetFile() const { return m_strFile; }
    int GetLine() const { return m_iLine; }
    int GetErrorCode() const { return m_iErrorCode; }
    const std::string& GetSysMsg() const { return m_strSysMsg; }

private:
    std::string m_strMessage;
    std::string m_strFile;
    int m_iLine = 0;
    int m_iErrorCode = 0;
    std::string m_strSysMsg;
    std::string m_strWhat = m_strSysMsg.empty() ? m_strMessage : m_strMessage + ": " + m_strSysMsg;
};

namespace vk {

/// Error codes of the layers above the backends.
namespace DbError {
constexpr int General = -1;            ///< the message tells it
constexpr int DepartmentLimit = 100;   ///< a department has as many receivers as it may have
constexpr int RuleOrConstraint = 1000; ///< a rule of the business layer, or a row that is still referred to
} // namespace DbError

} // namespace vk
