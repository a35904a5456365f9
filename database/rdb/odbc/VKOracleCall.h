#pragma once

#include <string>

namespace vk {

/// A call of a stored procedure without its cursor parameters, and the name of the first of them.
struct OracleCall
{
    std::string text;
    std::string cursor; ///< empty when there is none
};

/// Takes the parameters "vk_cursor", "vk_cursor1" and "vk_cursor2" out of a call of a stored procedure: the driver gives
/// back what they stand for as result sets. What stands inside quotes, and a text that is no call, stay as they are.
OracleCall WithoutCursorParameters(const std::string& text);

} // namespace vk
