#pragma once

#include <cstddef>
#include <limits>
#include <string>
#include <string_view>

namespace vk {

/// One row of an escape table: the byte, and what is written in its place.
struct Escape
{
    unsigned char byte;
    std::string_view text;
};

/// A constant table of replacements, used in both directions: SQL, XML, JSON and web texts differ only in their rows.
/// Make it constexpr. Stateless, so any thread may use it. Decoding needs rows whose texts begin with one and the same
/// character; it goes once from left to right, so that nothing is decoded twice.
class EscapeTable
{
public:
    static constexpr std::size_t kAllRows = std::numeric_limits<std::size_t>::max();

    template <std::size_t N> constexpr explicit EscapeTable(const Escape (&rows)[N]) : m_rows(rows), m_count(N)
    {
        static_assert(N < 255, "a slot is one byte");
        for (std::size_t i = 0; i < N; ++i)
            m_slots[rows[i].byte] = static_cast<unsigned char>(i + 1);
    }

    /// Appends text with every byte of the first `rows` rows replaced. Runs between them are copied whole.
    void Append(std::string& out, std::string_view text, std::size_t rows = kAllRows) const;

    std::string Encode(std::string_view text, std::size_t rows = kAllRows) const;

    /// The reverse of Encode. What looks like an escape but is in no row stays as it is. Character references
    /// ("&#x...;") are read with hexadecimal digits in either case, everything else exactly.
    std::string Decode(std::string_view text) const;

private:
    const Escape* MatchAt(std::string_view rest) const;

    const Escape* m_rows;
    std::size_t m_count;
    unsigned char m_slots[256] = {}; // 0: copied, else 1 + number of the row
};

} // namespace vk
