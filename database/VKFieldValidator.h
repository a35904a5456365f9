#pragma once

#include <string>

/// Tells whether a text is legal for a field: the whole text must match the validator's regular expression (PCRE).
/// Holds no changing state; may be used from any thread, the expression is compiled at each call. A text too long to
/// be matched within a bounded stack is refused, and so is every text when the expression is not valid.
class VKFieldValidator
{
public:
    VKFieldValidator();
    explicit VKFieldValidator(const std::string& expression) : m_strExpression(expression) {}

    virtual bool validate(const std::string& text) const;
    virtual bool operator()(const std::string& text) const { return validate(text); }
    virtual ~VKFieldValidator() = default;

    /// The text with \ [ ^ $ . | ? + ( ) { } escaped, for use inside an expression; "*" and "]" pass as they are.
    static std::string escapeRESpecialChars(const std::string& text);
    static std::string escapeRESpecialChar(const std::string& text, char special);

private:
    std::string m_strExpression;
};
