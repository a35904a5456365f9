#pragma once

#include "Options.h"

#include "VKDatabase.h"

#include <string>

namespace vk {

/// The installation root that "--root" names, as the library's configuration. One for the process; it must be there.
/// Throws InputError that names the directory or file at fault.
std::string UseRoot(const Arguments& arguments);
/// The same for a root that another option names; the last one used is the library's configuration.
std::string UseRoot(const std::string& given, const std::string& option);

/// The database of the root. Throws std::runtime_error with the database's own words when it cannot be opened.
VKDatabase& UseDatabase(const Arguments& arguments);

/// An entity of that database, by its factory operation. Throws std::runtime_error when it cannot be opened.
template <class Entity>
Entity& UseEntity(const Arguments& arguments, Entity* (VKDatabase::*factory)())
{
    VKDatabase& database = UseDatabase(arguments);
    Entity* const entity = (database.*factory)();
    if (entity == nullptr)
        throw std::runtime_error("the database cannot be opened: " + database.getLastErrorString());
    return *entity;
}

} // namespace vk
