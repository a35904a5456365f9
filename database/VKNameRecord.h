#pragma once

#include <string>

/// The identifier and the name of a row, for lists to choose from.
struct VK_NAME_RECORD
{
    unsigned long id = 0;
    std::string name;
};
