#include "Csv.h"

namespace vk {

namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr std::string_view kPlainEnds = ",\r\n\"";

} // namespace

CsvReader::CsvReader(std::string_view text) : m_text(text)
{
    if (m_text.substr(0, kByteOrderMark.size()) == kByteOrderMark)
        m_at = kByteOrderMark.size();
}

bool CsvReader::Next(CsvRow& row)
{
    while (!AtEnd() && TakeLineEnd())
        continue;
    row = {m_line, {}, {}};
    if (AtEnd())
        return false;
    for (bool more = true; more;) {
        std::string& field = row.fields.emplace_back();
        if (!AtEnd() && m_text[m_at] == '"')
            TakeQuoted(field, row.error);
        else
            TakePlain(field, row.error);
        if (!row.error.empty()) {
            SkipLine();
            return true;
        }
        more = !AtEnd() && m_text[m_at] == ',';
        if (more)
            ++m_at;
    }
    TakeLineEnd();
    return true;
}

/// What follows the field is a comma, a line end or the end of the text, or the error says otherwise.
void CsvReader::TakeQuoted(std::string& field, std::string& error)
{
    for (++m_at; !AtEnd(); ++m_at) {
        const char c = m_text[m_at];
        if (c == '"') {
            if (m_at + 1 >= m_text.size() || m_text[m_at + 1] != '"')
                break;
            ++m_at;
        }
        m_line += c == '\n';
        field += c;
    }
    if (AtEnd()) {
        error = "a quoted field is never closed";
        return;
    }
    ++m_at;
    if (!AtEnd() && kPlainEnds.find(m_text[m_at]) == std::string_view::npos)
        error = "text follows the closing quote of a field";
}

void CsvReader::TakePlain(std::string& field, std::string& error)
{
    const std::size_t end = std::min(m_text.find_first_of(kPlainEnds, m_at), m_text.size());
    field = m_text.substr(m_at, end - m_at);
    m_at = end;
    if (AtEnd())
        return;
    if (m_text[m_at] == '"')
        error = "a quote stands in a field that does not begin with one";
    else if (m_text[m_at] == '\r' && m_text.substr(m_at, 2) != "\r\n")
        error = "a carriage return stands in a field without quotes";
}

bool CsvReader::TakeLineEnd()
{
    const std::size_t length = m_text.substr(m_at, 2) == "\r\n" ? 2 : m_text.substr(m_at, 1) == "\n" ? 1 : 0;
    m_at += length;
    m_line += length > 0;
    return length > 0;
}

void CsvReader::SkipLine()
{
    m_at = std::min(m_text.find('\n', m_at), m_text.size());
    TakeLineEnd();
}

std::string CsvLine(const std::vector<std::string>& fields)
{
    std::string line;
    for (const std::string& field : fields) {
        if (&field != &fields.front())
            line += ',';
        const bool isPlain = field.find_first_of(kPlainEnds) == std::string::npos &&
                             (field.empty() || (field.front() != ' ' && field.back() != ' '));
        if (isPlain) {
            line += field;
            continue;
        }
        line += '"';
        for (const char c : field)
            line.append(c == '"' ? 2 : 1, c);
        line += '"';
    }
    return line + "\r\n";
}

} // namespace vk
