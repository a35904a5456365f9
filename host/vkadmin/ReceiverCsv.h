#pragma once

#include "VKReceiver.h"

#include <string>
#include <vector>

/// \file
/// Receivers as rows of a table: one column a field, under the field's name, and the guest departments. Secrets
/// (passwords, the security code, the settings that hold device passwords) have no column.

namespace vk {

std::vector<std::string> ReceiverCsvHeading();
std::vector<std::string> ReceiverCsvFields(const VK_RECEIVER& receiver);

/// The columns of a table that is read, in the order of its heading.
class ReceiverCsvColumns
{
public:
    /// Throws InputError for a heading with an unknown or doubled column, or without those that every receiver needs.
    explicit ReceiverCsvColumns(std::vector<std::string> heading);

    /// Fills a new receiver from a row. Gives back all that is wrong with it, a line each; empty when nothing is. The
    /// id is not taken: the store gives a new one. An empty field leaves the default.
    std::string Fill(const std::vector<std::string>& fields, VK_RECEIVER& receiver) const;

private:
    std::vector<std::string> m_heading;
};

} // namespace vk
