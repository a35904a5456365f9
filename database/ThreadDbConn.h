#pragma once

#include <map>
#include <string>

#include "CacheLine.h"

/// What one thread has of the database: its own cache of entity objects, each of which holds its own handle.
struct ThreadDbConn
{
    std::map<std::string, CacheLine> cache;
};
