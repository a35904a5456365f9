#include "XmlReaderWriter.h"

#include <cstdarg>
#include <cstdio>

XmlReaderWriter::NodeException::NodeException() : m_strMessage("Some error occurred.") {}

XmlReaderWriter::NodeException::NodeException(const char* format, ...)
{
    char buffer[2048] = {};
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(buffer, sizeof buffer, format, arguments);
    va_end(arguments);
    m_strMessage = buffer;
}
