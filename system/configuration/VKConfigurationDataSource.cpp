// The file "datasource": which database, and how it is opened.
#include "ConfigurationFile.h"
#include "FieldText.h"
#include "VKConfiguration.h"
#include "VKstringCase.h"
#include "VKstringTrim.h"

namespace {

constexpr std::size_t kLongestLine = 499;
constexpr int kSdb = 1;
constexpr int kOdbc = 2;

struct TypeWord
{
    const char* word;
    int type;
    bool oracle;
};
constexpr TypeWord kTypeWords[] = {{"Sdb", kSdb, false}, {"Odbc", kOdbc, false}, {"Oracle", kOdbc, true}};

void TakeType(VK_DATA_SOURCE& source, std::string_view value)
{
    source.database_type = 0;
    source.oracle = false;
    for (const TypeWord& row : kTypeWords)
        if (vk::EqualNoCase(row.word, value)) {
            source.database_type = row.type;
            source.oracle = row.oracle;
        }
}

/// Mark: the value is kept for a relational database only.
struct OdbcOnly
{
};

/// The keywords whose value is stored as it is.
constexpr auto kTextFields = vk::Fields(vk::Field<&VK_DATA_SOURCE::connect_string>("db_connect_string:"),
                                        vk::Field<&VK_DATA_SOURCE::user>("db_user:", OdbcOnly{}),
                                        vk::Field<&VK_DATA_SOURCE::password>("db_password:", OdbcOnly{}));

/// The trimmed value of a line with this keyword.
bool ValueOf(std::string_view line, std::string_view keyword, std::string_view& value)
{
    if (!vk::EqualNoCase(line.substr(0, keyword.size()), keyword))
        return false;
    value = vk::Trimmed(line.substr(keyword.size()));
    return true;
}

void TakeLine(std::string_view line, VK_DATA_SOURCE& source)
{
    std::string_view value;
    if (ValueOf(line, "database_type:", value))
        TakeType(source, value);
    else if (ValueOf(line, "db_connect_type:", value))
        source.uses_dsn = vk::EqualNoCase(value.substr(0, 3), "DSN");
    else
        vk::ForEachField(kTextFields, [&](const auto& field) {
            if (ValueOf(line, field.name, value))
                vk::SetFieldText(field.of(source), value);
        });
}

} // namespace

VK_DATA_SOURCE* VKConfiguration::getDataSource(bool force)
{
    VK_DATA_SOURCE* const kept = m_dataSource.Get();
    return kept && !force ? kept : ReadDataSource(force);
}

VK_DATA_SOURCE* VKConfiguration::ReadDataSource(bool force)
{
    const std::lock_guard<std::recursive_mutex> lock(m_readLock);
    if (m_dataSource.Get() && !force)
        return m_dataSource.Get();
    VK_DATA_SOURCE fresh;
    if (!vk::ReadConfigurationLines(ConfPath("datasource"), kLongestLine,
                                    [&](std::string_view line) { TakeLine(vk::Trimmed(line), fresh); })) {
        m_dataSource.Drop();
        return nullptr;
    }
    if (fresh.database_type != kOdbc)
        vk::ForEachField(kTextFields, [&](const auto& field) {
            if (std::decay_t<decltype(field)>::template has<OdbcOnly>)
                vk::SetFieldText(field.of(fresh), "");
        });
    return m_dataSource.Keep(fresh);
}
