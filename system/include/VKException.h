#pragma once

#include <exception>
#include <string>

/// Base of all exceptions of this system: a message, the place that threw it and the text of the system error, if one
/// was the cause. Thrown and caught by value; `what()` keeps the standard class's own text, the message is in `GetMsg`.
class VKException : public std::exception
{
public:
    explicit VKException(const std::string& message);
    VKException(const std::string& file, int line, const std::string& message, const std::string& systemMessage = "");
    ~VKException() override = default;

    const char* what() const noexcept override;

    /// One line with everything that is known, for a log.
    virtual std::string ToString() const;
    virtual std::string GetMsg() const;
    virtual std::string GetFile() const;
    virtual int GetLine() const;
    virtual std::string GetSysMsg() const;

protected:
    std::string Msg;
    std::string File;
    int Line = 0;
    std::string SysMsg;
};
