#include "VKstringClean.h"

#include "VKascii.h"
#include "VKstringTrim.h"

#include <algorithm>
#include <cstring>

namespace {

bool IsText(char c) { return vk::ToByte(c) >= ' ' ? c != '\x7F' : c == '\t' || c == '\n' || c == '\r'; }

char* Keep(char* text, bool (*wanted)(char))
{
    if (text)
        *std::remove_if(text, text + std::strlen(text), [wanted](char c) { return !wanted(c); }) = '\0';
    return text;
}

std::string& Keep(std::string& text, bool (*wanted)(char))
{
    text.erase(std::remove_if(text.begin(), text.end(), [wanted](char c) { return !wanted(c); }), text.end());
    return text;
}

constexpr bool Digit(char c) { return vk::IsDigit(c); }
constexpr bool Printable(char c) { return vk::IsPrint(c); }

// In the order of the flags.
constexpr std::string_view kMarks[] = {"Msg ID: ", "Sent by ", "Sent to ", "Sent at ", "Subject: "};

/// The number of the mark at the front of the text, -1 without one.
int MarkAt(std::string_view text)
{
    const auto stands = [text](std::string_view mark) { return text.substr(0, mark.size()) == mark; };
    const auto found = std::find_if(std::begin(kMarks), std::end(kMarks), stands);
    return found == std::end(kMarks) ? -1 : static_cast<int>(found - std::begin(kMarks));
}

/// Where the next mark begins behind the one at the front; the text's length when there is none.
std::size_t PartLength(std::string_view text)
{
    std::size_t length = 1;
    while (length < text.size() && MarkAt(text.substr(length)) < 0)
        ++length;
    return length;
}

/// What is left of a line that begins with a mark.
std::string RemainingParts(std::string_view line, const bool (&remove)[std::size(kMarks)])
{
    std::string kept;
    while (!line.empty()) {
        const std::size_t length = PartLength(line);
        if (!remove[MarkAt(line)])
            kept.append(line.substr(0, length));
        line.remove_prefix(length);
    }
    return kept;
}

} // namespace

char* VKstringCleanText(char* text) { return Keep(text, IsText); }
std::string& VKstringCleanText(std::string& text) { return Keep(text, IsText); }
char* VKstringCleanNumeric(char* text) { return Keep(text, Digit); }
std::string& VKstringCleanNumeric(std::string& text) { return Keep(text, Digit); }
char* VKutilCleanUnprintableChar(char* text) { return Keep(text, Printable); }

char* VKutilCleanText2(char* text)
{
    if (!VKstringCleanText(text))
        return text;
    std::replace_if(text, text + std::strlen(text), vk::IsSpace, ' ');
    const auto bothBlank = [](char a, char b) { return a == ' ' && b == ' '; };
    *std::unique(text, text + std::strlen(text), bothBlank) = '\0';
    return text;
}

char* VKutilCleanMessageIncludeParams(char* message, bool messageId, bool sender, bool recipient, bool time,
                                      bool subject)
{
    const bool remove[] = {messageId, sender, recipient, time, subject};
    std::string_view rest = vk::ViewOf(message);
    std::string kept;
    while (!rest.empty()) {
        const std::size_t next = std::min(rest.find('\n'), rest.size() - 1) + 1;
        const std::string_view line = rest.substr(0, next);
        const std::string_view text = vk::Trimmed(line, "\r\n", vk::Side::Right);
        if (MarkAt(text) < 0) {
            kept.append(line);
        } else if (const std::string parts = RemainingParts(text, remove); !parts.empty()) {
            kept.append(parts).append(line.substr(text.size()));
        }
        rest.remove_prefix(next);
    }
    if (message)
        message[kept.copy(message, kept.size())] = '\0'; // never longer than it was
    return message;
}
