#include "VKSqlStore.h"

namespace vk {

/// Says which statement it was by its beginning only: the values may hold what no log should show.
void SqlStore::RequireFitsLimit(const std::string& statement, std::size_t limit)
{
    constexpr std::size_t kShown = 40;
    if (statement.size() > limit)
        throw VKDBexception(DbError::General, __FILE__, __LINE__,
                            "The statement is " + std::to_string(statement.size()) + " characters long, at most " +
                                std::to_string(limit) + " are run [" + statement.substr(0, kShown) +
                                "...].");
}

std::unique_ptr<VKDBiResultSet> SqlStore::RunSelect(const std::string& text)
{
    const std::string statement = text + Dialect().SelectEnd();
    RequireFitsLimit(statement, m_statementLimit);
    return m_connection->ExecuteSelectQuery(statement);
}

void SqlStore::ForEachRow(const std::string& query, const SqlRowReader& take)
{
    const std::string statement = query + Dialect().SelectEnd();
    RequireFitsLimit(statement, m_statementLimit);
    m_connection->ForEachRow(statement, take);
}

long SqlStore::RunUpdate(const std::string& text)
{
    const std::string statement = text + Dialect().UpdateEnd();
    RequireFitsLimit(statement, m_statementLimit);
    return m_connection->ExecuteUpdateQuery(statement);
}

unsigned long SqlStore::RunInsert(const std::string& text, std::size_t limit)
{
    const std::string statement = text + Dialect().InsertEnd();
    RequireFitsLimit(statement, limit);
    return m_connection->ExecuteInsertQuery(statement);
}

VKDBexception SqlStore::WithoutTexts(const VKDBexception& failure, const std::vector<std::string>& texts)
{
    const auto without = [&](std::string message) {
        for (const std::string& text : texts)
            for (std::size_t at = message.find(text); !text.empty() && text != "''" && at != std::string::npos;
                 at = message.find(text, at))
                message.replace(at, text.size(), "***");
        return message;
    };
    return VKDBexception(failure.GetErrorCode(), failure.GetFile(), failure.GetLine(), without(failure.GetMsg()),
                         without(failure.GetSysMsg()));
}

void SqlStore::SwitchKeepIdentity(const TableName& table, bool on)
{
    const std::string statement = Dialect().KeepIdentity(table, on);
    if (statement.empty())
        return;
    try {
        m_connection->ExecuteUpdateQuery(statement);
    } catch (const VKDBexception& failure) {
        throw VKDBexception(failure.GetErrorCode(), __FILE__, __LINE__,
                            on ? "Enabling IDENTITY_INSERT failed." : "Disabling IDENTITY_INSERT failed.",
                            failure.GetSysMsg());
    }
}

void SqlStore::AbandonKeepIdentity(const TableName& table) noexcept
try {
    if (!Dialect().KeepIdentity(table, true).empty())
        m_connection->ExecuteUpdateQuery(Dialect().KeepIdentity(table, false));
} catch (...) { // what led here is told
}

void SqlStore::RequireSameId(unsigned long added, unsigned long old, const char* what)
{
    if (added != old)
        throw VKDBexception(DbError::General, __FILE__, __LINE__,
                            std::string("Record ID mismatch while converting ") + what +
                                " records: New added record ID doesn't match with the old record ID.");
}

} // namespace vk
