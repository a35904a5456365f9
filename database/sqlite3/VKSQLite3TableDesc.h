#pragma once

/// A table of a schema: its name and its column text, as they stand in CREATE TABLE. Holds pointers to texts that live
/// as long as the program.
struct VKSQLite3TableDesc
{
    const char* tableName;
    const char* columns;
};
