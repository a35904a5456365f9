#pragma once

#include <map>
#include <memory>
#include <string>

#include "CacheLine.h"

class VKRDBiDatabase;

/// What one thread has of the database: its connection to a relational server, null in the file database, and its own
/// cache of entity objects. The objects go first.
struct ThreadDbConn
{
    std::shared_ptr<VKRDBiDatabase> connection;
    std::map<std::string, CacheLine> cache;
};
