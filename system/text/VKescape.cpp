#include "VKescape.h"

#include "VKascii.h"

#include <algorithm>

namespace vk {

void EscapeTable::Append(std::string& out, std::string_view text, std::size_t rows) const
{
    const auto slot = [this](const char* at) { return m_slots[ToByte(*at)]; };
    const char* run = text.data();
    const char* const end = run + text.size();
    for (const char* at = run; at != end;) {
        if (end - at >= 4 && (slot(at) | slot(at + 1) | slot(at + 2) | slot(at + 3)) == 0) {
            at += 4;
            continue;
        }
        const std::size_t row = slot(at);
        if (row != 0 && row <= rows) {
            out.append(run, at);
            out.append(m_rows[row - 1].text);
            run = at + 1;
        }
        ++at;
    }
    out.append(run, end);
}

std::string EscapeTable::Encode(std::string_view text, std::size_t rows) const
{
    std::string out;
    out.reserve(text.size() + text.size() / 8);
    Append(out, text, rows);
    return out;
}

std::string EscapeTable::Decode(std::string_view text) const
{
    std::string out;
    out.reserve(text.size());
    const char lead = m_rows[0].text[0];
    while (!text.empty()) {
        const std::size_t run = std::min(text.find(lead), text.size());
        out.append(text.substr(0, run));
        text.remove_prefix(run);
        if (text.empty())
            break;
        if (const Escape* row = MatchAt(text)) {
            out += static_cast<char>(row->byte);
            text.remove_prefix(row->text.size());
        } else {
            out += lead;
            text.remove_prefix(1);
        }
    }
    return out;
}

const Escape* EscapeTable::MatchAt(std::string_view rest) const
{
    const auto sameLetters = [](char a, char b) { return ToLower(a) == ToLower(b); };
    const auto matches = [&](const Escape& row) {
        const std::string_view head = rest.substr(0, row.text.size());
        if (head.size() != row.text.size())
            return false;
        const bool reference = row.text.substr(0, 2) == "&#";
        return reference ? std::equal(head.begin(), head.end(), row.text.begin(), sameLetters) : head == row.text;
    };
    const Escape* const found = std::find_if(m_rows, m_rows + m_count, matches);
    return found == m_rows + m_count ? nullptr : found;
}

} // namespace vk
