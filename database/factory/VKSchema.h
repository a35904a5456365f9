#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vk {

class SqlDialect;

/// The dialect of relational servers with this name: "tsql" or "postgresql"; null for any other.
const SqlDialect* RelationalDialect(std::string_view name);

/// The statements that make all tables of the system in an empty relational database, in order, with keys, indexes and
/// foreign keys; without an end mark.
std::vector<std::string> SchemaStatements(const SqlDialect& dialect);

} // namespace vk
