#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

/// \file
/// Tables as text: comma-separated values (RFC 4180).

namespace vk {

/// One row of such a text.
struct CsvRow
{
    long line = 0; ///< where it begins, from 1
    std::vector<std::string> fields;
    std::string error; ///< what is wrong with how it is written; empty when nothing is
};

/// Reads row by row. Takes what spreadsheets write: lines that end with CR LF or LF, fields in quotes with line breaks
/// and doubled quotes in them, a byte order mark. Blank lines are skipped. Nothing is thrown.
class CsvReader
{
public:
    /// The text must outlive the object.
    explicit CsvReader(std::string_view text);

    /// False at the end.
    bool Next(CsvRow& row);

private:
    bool AtEnd() const { return m_at >= m_text.size(); }
    bool TakeLineEnd();
    void TakeQuoted(std::string& field, std::string& error);
    void TakePlain(std::string& field, std::string& error);
    void SkipLine();

    std::string_view m_text;
    std::size_t m_at = 0;
    long m_line = 1;
};

/// A row with its line end, CR LF. Fields that need quotes have them.
std::string CsvLine(const std::vector<std::string>& fields);

} // namespace vk
