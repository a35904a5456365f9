#pragma once

#include "VKException.h"

/// A failure of the file and directory classes; it knows the path concerned.
class VKioException : public VKException
{
public:
    VKioException(const std::string& path, const std::string& message);
    VKioException(const std::string& path, const std::string& file, int line, const std::string& message,
                  const std::string& systemMessage = "");

    std::string ToString() const override;

    std::string GetPath() const { return Path; }

private:
    std::string Path;
};
