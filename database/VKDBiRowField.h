#pragma once

#include <string>

/// One value of a query's result: a name and a value, both owned by the field. A value that is NULL in the database
/// reads as nullptr, empty, 0 and false. A text that is no number reads as the number at its start, or 0.
class VKDBiRowField
{
public:
    /// A field with an empty name and the value NULL.
    VKDBiRowField() = default;

    /// Copies both texts; a null pointer as value makes the value NULL.
    VKDBiRowField(const char* name, const char* value);

    const char* GetName() const { return m_strName.c_str(); }

    /// The value's text, valid as long as the field; nullptr for NULL.
    const char* GetValuePtr() const { return m_bNull ? nullptr : m_strValue.c_str(); }
    const std::string& GetValueString() const { return m_strValue; }
    int GetValueInt() const;
    unsigned int GetValueUInt() const;
    long GetValueLong() const;
    unsigned long GetValueULong() const;
    float GetValueFloat() const;
    double GetValueDouble() const;

    /// False for NULL, for "false", "f" and "no" in any case, for "0" and for an empty value.
    bool GetValueBool() const;

private:
    std::string m_strName;
    std::string m_strValue;
    bool m_bNull = true;
};
