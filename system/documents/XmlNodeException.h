#pragma once

#include <exception>
#include <string>

#include "XmlReaderWriter.h"

/// Misuse of a document: a node, attribute or value that is not there. Carries one message.
class XmlReaderWriter::NodeException : public std::exception
{
public:
    NodeException();

    /// Formats as printf does; the message is cut at 2047 bytes.
    explicit NodeException(const char* format, ...) __attribute__((format(printf, 2, 3)));

    const std::string& getMessage() const { return m_strMessage; }
    const char* what() const noexcept override { return m_strMessage.c_str(); }

private:
    std::string m_strMessage;
};
