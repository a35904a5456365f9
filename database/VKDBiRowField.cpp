#include "VKDBiRowField.h"

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
float VKDBiRowField::GetValueFloat() const { return std::strtof(m_strValue.c_str(), nullptr); }
double VKDBiRowField::GetValueDouble() const { return std::strtod(m_strValue.c_str(), nullptr); }

bool VKDBiRowField::GetValueBool() const
{
    for (const char* word : {"false", "f", "no", "0"})
        if (strcasecmp(m_strValue.c_str(), word) == 0)
            return false;
    return !m_strValue.empty();
}
