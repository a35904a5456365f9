#pragma once

#include <string>

/// Tests that the validating layers share.
class VKBALUtility
{
public:
    /// A legal name of a department or another entity that is no device: letters, digits, blanks, ' . _ -.
    static bool IsValidName(const std::string& name);

    /// A legal name of a receiver or a group.
    static bool IsValidDeviceName(const std::string& name);

    /// A legal name of an account: printable ASCII but none of " ' : \ / % < > # * ? | ; , and may be empty.
    static bool IsValidUserName(const std::string& name);

    /// Whether a text is empty but for white space.
    static bool IsBlank(const std::string& text);
};
