#include "VKDBiRowField.h"

#include <charconv>
#include <cstdlib>
#include <strings.h>

VKDBiRowField::VKDBiRowField(const char* name, const char* value)
    : m_strName(name ? name : ""), m_strValue(value ? value : ""), m_bNull(value == nullptr)
{
}

int VKDBiRowField::GetValueInt() const { return static_cast<int>(GetValueLong()); }
unsigned int VKDBiRowField::GetValueUInt() const { return static_cast<unsigned int>(GetValueULong()); }
long VKDBiRowField::GetValueLong() const { return std::strtol(m_strValue.c_str(), nullptr, 10); }
unsigned long VKDBiRowField::GetValueULong() const { return std::strtoul(m_strValue.c_str(), nullptr, 10); }
float VKDBiRowField::GetValueFloat() const { return static_cast<float>(GetValueDouble()); }

/// With a point, whatever the locale.
double VKDBiRowField::GetValueDouble() const
{
    const std::size_t start = m_strValue.find_first_not_of(" +");
    double value = 0;
    if (start != std::string::npos)
        std::from_chars(m_strValue.data() + start, m_strValue.data() + m_strValue.size(), value);
    return value;
}

bool VKDBiRowField::GetValueBool() const
{
    for (const char* word : {"false", "f", "no", "0"})
        if (strcasecmp(m_strValue.c_str(), word) == 0)
            return false;
    return !m_strValue.empty();
}
