#pragma once

#include <string>
#include <string_view>

namespace vk {

/// One text of a constants file.
struct MessageConstant
{
    std::string name;
    unsigned long id = 0;
    std::string text;
};

/// Reads a constants file, a C header of texts, line by line. An entry is a line that begins with "#define", a name, a
/// number and, from there on, a comment with the text, which may run over several lines; these are joined by blanks. A
/// #define without a comment before the next one has no text and makes no entry.
class MessageConstantsReader
{
public:
    /// Takes the next line. True when it completes an entry.
    bool Take(std::string_view line);

    /// The entry completed last, or the one that is being read.
    const MessageConstant& Get() const { return m_entry; }
    /// Whether the lines so far end inside a text.
    bool IsInText() const { return m_expect == Expect::Text; }

private:
    bool TakeText(std::string_view text);

    enum class Expect { Define, Comment, Text };

    Expect m_expect = Expect::Define;
    MessageConstant m_entry;
};

} // namespace vk
