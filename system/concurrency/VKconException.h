#pragma once

#include "VKException.h"

/// A failure of the concurrency classes; it knows the thread on which it happened.
class VKconException : public VKException
{
public:
    VKconException(unsigned long threadId, const std::string& message);
    VKconException(unsigned long threadId, const char* file, int line, const std::string& message);
    VKconException(unsigned long threadId, const char* file, int line, const std::string& message,
                   const std::string& systemMessage);

    std::string ToString() const override;

    unsigned long GetThreadID() const { return ThreadID; }

private:
    unsigned long ThreadID;
};
