#include "VKSqlReceiverFilter.h"

#include "VKCarrier.h"
#include "VKDepartment.h"
#include "VKReceiver.h"
#include "VKSqlText.h"

namespace vk {

namespace {

constexpr const TableName* kTables[] = {&kReceiverTable.name, &kReceiverDeptTable.name, &kDepartmentTable.name,
                                        &kReceiverAttributeTable.name, &kCarrierTable.name};

/// Receivers that belong to one of the departments or are its guests.
std::string InDepartments(const SqlDialect& dialect, const std::vector<unsigned long>& ids)
{
    const SqlRaw list{SqlIdList(ids)};
    return SqlText(dialect,
                   NameTables(dialect, "{receiver}.id IN (SELECT {receiver}.id FROM {receiver} LEFT OUTER JOIN "
                                       "{receiver_dept} ON {receiver}.id={receiver_dept}.owner_id WHERE "
                                       "{receiver}.department_id IN {} OR {receiver_dept}.department_id IN {})"),
                   list, list);
}

} // namespace

std::string SqlIdList(const std::vector<unsigned long>& ids)
{
    std::string text;
    for (const unsigned long id : ids)
        text += (text.empty() ? "" : ", ") + std::to_string(id);
    return "(" + (text.empty() ? "NULL" : text) + ")";
}

std::string NameTables(const SqlDialect& dialect, std::string_view pattern)
{
    std::string text(pattern);
    const auto replace = [&text](const std::string& place, const std::string& by) {
        for (std::size_t at = 0; (at = text.find(place, at)) != std::string::npos; at += by.size())
            text.replace(at, place.size(), by);
    };
    for (const TableName* table : kTables)
        replace(std::string("{") + table->file + "}", dialect.TableOf(*table));
    replace("{ifnull}", dialect.IfNull());
    replace("{substr}", dialect.Substring());
    return text;
}

std::string SqlReceiverFilter::CoverJoin(const SqlDialect& dialect)
{
    return NameTables(dialect, " LEFT OUTER JOIN {receiver} Recv2 ON Recv2.id={receiver}.forward_to_id");
}

SqlClause SqlReceiverFilter::Clause(const SqlDialect& dialect) const
{
    SqlClause clause(dialect);
    AddTexts(dialect, clause);
    AddStates(dialect, clause);
    AddIds(dialect, clause);
    if (!attributes.empty())
        clause.AddRaw(Attributes(dialect));
    return clause;
}

void SqlReceiverFilter::AddTexts(const SqlDialect& dialect, SqlClause& clause) const
{
    const std::string receiver = dialect.TableOf(kReceiverTable.name) + ".";
    clause.AddBeginning(receiver + "name", name);
    clause.AddBeginning(receiver + "pin", pin);
    if (exactPin)
        clause.AddRaw(dialect.EqualsNoCase(receiver + "pin", *exactPin));
    clause.AddBeginning("Recv2.name", coverName);
    if (accountName)
        clause.AddRaw(dialect.EqualsNoCase(receiver + "acct_name", *accountName) + " AND " + receiver +
                      "acct_pwd=" + dialect.Text(accountDigest));
    if (firstLetter == FltOnlyLetters)
        clause.AddRaw(NameTables(dialect, "(UPPER({substr}({receiver}.name, 1, 1)) >= 'A' AND "
                                          "UPPER({substr}({receiver}.name, 1, 1)) <= 'Z')"));
    else if (firstLetter == FltNoLetters)
        clause.AddRaw(NameTables(dialect, "(UPPER({substr}({receiver}.name, 1, 1)) < 'A' OR "
                                          "UPPER({substr}({receiver}.name, 1, 1)) > 'Z')"));
}

void SqlReceiverFilter::AddStates(const SqlDialect& dialect, SqlClause& clause) const
{
    const std::string receiver = dialect.TableOf(kReceiverTable.name) + ".";
    const struct
    {
        FltEnabled wanted;
        const char* on;
        const char* off;
    } states[] = {{available, "status_code=1", "status_code<>1"},
                  {voice, "voice_enable=1", "voice_enable=0"},
                  {advancedMessaging, "advanced_messaging=1", "advanced_messaging=0"}};
    for (const auto& state : states)
        if (state.wanted != FltEither)
            clause.AddRaw(receiver + (state.wanted == FltOnlyEnabled ? state.on : state.off));
}

void SqlReceiverFilter::AddIds(const SqlDialect& dialect, SqlClause& clause) const
{
    const auto add = [&](const char* pattern, auto value) { clause.Add(NameTables(dialect, pattern), value); };
    if (carrierId != 0)
        add("{receiver}.carrier_id={}", carrierId);
    if (protocolId != 0)
        add("{receiver}.carrier_id IN (SELECT id FROM {carrier} WHERE protocol_id={})", protocolId);
    if (ownerId != 0)
        add("{receiver}.owner_id={}", ownerId);
    if (departmentId != 0)
        clause.AddRaw(InDepartments(dialect, {departmentId}));
    if (departmentIds)
        clause.AddRaw(InDepartments(dialect, *departmentIds));
    for (const auto* ids : {&favoriteIds, &permittedIds, &receiverIds})
        if (*ids)
            add("{receiver}.id IN {}", SqlRaw{SqlIdList(**ids)});
}

/// A receiver has one row for each of its attributes, so all values are there when as many rows match.
std::string SqlReceiverFilter::Attributes(const SqlDialect& dialect) const
{
    const std::string table = dialect.TableOf(kReceiverAttributeTable.name);
    std::string values;
    for (const auto& [id, value] : attributes)
        values += SqlText(dialect, "{}({}.attribute_id={} AND {})", SqlRaw{values.empty() ? "" : " OR "}, SqlRaw{table},
                          id, SqlRaw{dialect.EqualsNoCase(table + ".attribute_values", value)});
    return SqlText(dialect,
                   NameTables(dialect, "{receiver}.id IN (SELECT {recv_attribute}.receiver_id FROM {recv_attribute} "
                                       "WHERE {} GROUP BY {recv_attribute}.receiver_id HAVING "
                                       "COUNT({recv_attribute}.receiver_id) = {})"),
                   SqlRaw{values}, attributes.size());
}

} // namespace vk
