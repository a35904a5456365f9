#pragma once

#include "Options.h"

namespace vk {

/// "schema": the statements that make the tables on a relational server.
int PrintSchema(const Arguments& arguments);

/// "convert": all records of one root into another one.
int ConvertRoot(const Arguments& arguments);

} // namespace vk
