#include "VKPinTemplate.h"

#include <algorithm>
#include <string_view>

#include "VKascii.h"

namespace {

constexpr int kInvalid = -1;
constexpr int kLengthLimit = 100;

std::string Prepared(const std::string& pinTemplate)
{
    const std::size_t first = pinTemplate.find_first_not_of(" \t");
    if (first == std::string::npos)
        return "";
    std::string text = pinTemplate.substr(first, pinTemplate.find_last_not_of(" \t") - first + 1);
    std::transform(text.begin(), text.end(), text.begin(), [](char c) { return vk::ToUpper(c); });
    return text;
}

bool Fits(char kind, char c) { return kind == 'A' ? vk::IsAlnum(c) : vk::IsDigit(c); }

/// Only the last token may have any length, and then be of another kind than the one before it, which would otherwise
/// have no end.
bool AreInOrder(const std::vector<VKPinToken>& tokens)
{
    for (std::size_t i = 0; i < tokens.size(); ++i) {
        if (tokens[i].length != 0)
            continue;
        if (i + 1 != tokens.size() || (i > 0 && tokens[i - 1].kind == tokens[i].kind))
            return false;
    }
    return true;
}

} // namespace

int GetTokensFromPinTemplate(const std::string& pinTemplate, std::vector<VKPinToken>& tokens)
{
    tokens.clear();
    VKPinToken token;
    bool open = false; // digits that no letter has closed yet
    for (const char c : Prepared(pinTemplate)) {
        if (vk::IsDigit(c)) {
            token.length = token.length * 10 + (c - '0');
            open = true;
        } else if (c == 'N' || c == 'A') {
            token.kind = c;
            tokens.push_back(token);
            token = {};
            open = false;
        } else {
            return kInvalid;
        }
        if (token.length >= kLengthLimit)
            return kInvalid;
    }
    if (open || !AreInOrder(tokens))
        return kInvalid;
    return static_cast<int>(tokens.size());
}

bool ValidatePinAgainstPinTemplate(const std::string& pin, const std::string& pinTemplate)
{
    std::vector<VKPinToken> tokens;
    const int count = GetTokensFromPinTemplate(pinTemplate, tokens);
    if (count <= 0)
        return count == 0;
    std::string_view rest(pin);
    for (const VKPinToken& token : tokens) {
        const std::size_t length = token.length == 0 ? rest.size() : static_cast<std::size_t>(token.length);
        if (rest.size() < length ||
            !std::all_of(rest.begin(), rest.begin() + length, [&](char c) { return Fits(token.kind, c); }))
            return false;
        rest.remove_prefix(length);
    }
    return rest.empty();
}
