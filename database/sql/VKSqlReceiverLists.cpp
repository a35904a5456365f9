#include "VKSqlReceiverLists.h"

#include <ctime>
#include <unordered_map>

#include "VKCarrier.h"
#include "VKDBsystem.h"
#include "VKDepartment.h"
#include "VKLog.h"
#include "VKRecordList.h"
#include "VKTableRow.h"
#include "VKsysEventLogInterface.h"

namespace vk {

namespace {

constexpr const TableName& kName = kReceiverTable.name;
constexpr const char* kByName = " ORDER BY UPPER({receiver}.name) ASC";
constexpr const char* kCarrierJoin = " LEFT OUTER JOIN {carrier} ON {carrier}.id={receiver}.carrier_id";
constexpr const char* kDepartmentJoin = " LEFT OUTER JOIN {department} ON {department}.id={receiver}.department_id";

} // namespace

std::string SqlReceiverLists::DisabledAt(long time) const
{
    const bool cover = VKDBiReceiver::s_bIsCoverByAllowed;
    return SqlText(m_store.Dialect(),
                   Named("({receiver}.status_code<>1 {} AND ({} ({receiver}.disable_start_date<={} AND "
                         "{receiver}.disable_end_date>={})))"),
                   SqlRaw{cover ? Named(" AND {receiver}.forward_to_id<=0 ") : ""},
                   SqlRaw{cover ? Named(" {receiver}.disable_end_date<=0 OR ") : ""}, time, time);
}

/// Status 1, covered, or outside the period.
std::string SqlReceiverLists::EnabledNow() const
{
    const long now = time(nullptr);
    const bool cover = VKDBiReceiver::s_bIsCoverByAllowed;
    return SqlText(m_store.Dialect(),
                   Named("({receiver}.status_code=1{} OR NOT ({}({receiver}.disable_start_date<={} AND "
                         "{receiver}.disable_end_date>={})))"),
                   SqlRaw{cover ? Named(" OR {receiver}.forward_to_id>0") : ""},
                   SqlRaw{cover ? Named("{receiver}.disable_end_date<=0 OR ") : ""}, now, now);
}

std::unique_ptr<SqlAttachment> SqlReceiverLists::NeededCarriers(bool needed)
{
    return needed ? m_files.Carriers() : nullptr;
}

/// To be run in a transaction, with the carriers attached when the query or the filter needs them.
std::string SqlReceiverLists::Filtered(const Query& query) const
{
    const SqlDialect& dialect = m_store.Dialect();
    SqlClause clause = m_filter.Clause(dialect);
    if (!query.condition.empty())
        clause.AddRaw(query.condition);
    return Named("SELECT " + query.columns + " FROM {receiver}" + (query.protocols ? kCarrierJoin : "")) +
           (m_filter.NeedsCover() ? SqlReceiverFilter::CoverJoin(dialect) : "") + " " + clause.Text() + Named(kByName);
}

void SqlReceiverLists::ForEachFiltered(const Query& query, const SqlRowReader& take)
{
    const auto carriers = NeededCarriers(query.protocols || m_filter.NeedsCarriers());
    Reading([&] { m_store.ForEachRow(Filtered(query), take); });
}

/// Appends each row to a list, in place: a list may hold thousands.
template <class Finish>
void SqlReceiverLists::ReadInto(VK_RECEIVER_LIST& list, const std::string& query, Finish&& finish)
{
    SqlRowPlan plan(kReceiverTable.fields);
    m_store.ForEachRow(query, [&](const SqlRow& row) {
        AppendRecord(list.list, list.count, VK_RECEIVER{});
        VK_RECEIVER& receiver = list.list[list.count - 1];
        plan.Read(row, receiver);
        finish(receiver, row);
    });
}

void SqlReceiverLists::Get(VK_RECEIVER_LIST* list, const Extras& extras)
{
    EmptyReceiverList(list);
    const auto carriers = NeededCarriers(extras.protocols || m_filter.NeedsCarriers());
    Reading([&] {
        const std::string query =
            Filtered({extras.protocols ? "{receiver}.*, {carrier}.protocol_id AS protocol_id" : "{receiver}.*",
                      extras.protocols, extras.onlyEnabled ? EnabledNow() : ""});
        ReadInto(*list, query, [&](VK_RECEIVER& receiver, const SqlRow& row) {
            if (extras.protocols)
                receiver.protocol_id = static_cast<unsigned int>(row.Unsigned(row.Count() - 1));
            if (extras.miscSettings)
                Decode(receiver);
        });
        AddParts(*list, extras);
    });
}

/// A list that is to be sent to must not fail for one receiver's settings: they are told and left out.
void SqlReceiverLists::Decode(VK_RECEIVER& receiver)
{
    try {
        ConvertJSONToMiscSettingsData(&receiver);
    } catch (const VKDBexception& failure) {
        if (VKsysEventLogInterface* const log = m_owner.GetDbSystem()->GetEventLog())
            LogWrite(*log, VKLogInterface::ERROR, {__LINE__, __FILE__}, failure.GetMsg());
    }
}

/// The parts of all receivers in one query each: a list may hold thousands.
void SqlReceiverLists::AddParts(VK_RECEIVER_LIST& list, const Extras& extras)
{
    if (!extras.departments && !extras.schedules)
        return;
    std::unordered_map<unsigned long, VK_RECEIVER*> receivers;
    for (int i = 0; i < list.count; ++i)
        receivers[list.list[i].id] = &list.list[i];
    const auto withOwner = [&](unsigned long id, auto&& add) {
        const auto found = receivers.find(id);
        if (found != receivers.end())
            add(*found->second);
    };
    if (extras.departments)
        m_store.SelectRecords<VK_DEPT_RIGHTS>(
            kReceiverDeptTable.fields,
            [&](const VK_DEPT_RIGHTS& rights, const SqlRow&) {
                withOwner(rights.owner_id, [&](VK_RECEIVER& owner) {
                    AppendRecord(owner.dept_rights, owner.dept_rights_count, rights);
                });
            },
            "SELECT * FROM {} ORDER BY id", kReceiverDeptTable.name);
    if (extras.schedules)
        m_store.SelectRecords<VK_ONDUTY_SCHEDULE>(
            kReceiverScheduleTable.fields,
            [&](const VK_ONDUTY_SCHEDULE& schedule, const SqlRow&) {
                withOwner(schedule.owner_id,
                          [&](VK_RECEIVER& owner) { AppendRecord(owner.schedules, owner.schedule_count, schedule); });
            },
            "SELECT * FROM {} WHERE member_id=0 ORDER BY id", kReceiverScheduleTable.name);
}

void SqlReceiverLists::GetBrief(VK_RECEIVER_LIST* list, const char* columns, bool protocols)
{
    EmptyReceiverList(list);
    const std::string query =
        Filtered({std::string(columns) + (protocols ? ", {carrier}.protocol_id AS protocol_id" : ""), protocols, ""});
    const auto carriers = NeededCarriers(protocols || m_filter.NeedsCarriers());
    const auto rows = Reading([&] { return m_store.Select("{}", SqlRaw{query}); });
    for (int row = 0; row < rows->GetReturnedRowsCount(); ++row) {
        AppendRecord(list->list, list->count, VK_RECEIVER{});
        VK_RECEIVER& receiver = list->list[list->count - 1];
        ReadRowByName(kReceiverTable.fields, (*rows)[row], receiver);
        receiver.protocol_id = (*rows)[row]["protocol_id"].GetValueUInt();
    }
}

void SqlReceiverLists::GetForScheduler(VK_RECEIVER_LIST* list, bool withSchedules)
{
    EmptyReceiverList(list);
    Extras extras;
    extras.schedules = withSchedules;
    const SqlRaw disabled{m_store.Dialect().ConditionColumn(DisabledAt(time(nullptr)))};
    Reading([&] {
        const auto rows = m_store.Select(Named("SELECT {receiver}.id, {receiver}.name, {} AS IsReceiverDisabledAtTime "
                                               "from {receiver} ORDER BY UPPER({receiver}.name) ASC"),
                                         disabled);
        for (int row = 0; row < rows->GetReturnedRowsCount(); ++row) {
            VK_RECEIVER receiver;
            receiver.id = (*rows)[row][0].GetValueULong();
            SetText(receiver.name, (*rows)[row][1].GetValueString(), "name");
            receiver.disabled = (*rows)[row][2].GetValueBool();
            AppendRecord(list->list, list->count, receiver);
        }
        AddParts(*list, extras);
    });
}

bool SqlReceiverLists::GetOne(VK_RECEIVER* receiver, const std::string& condition, bool withSchedules)
{
    EmptyReceiver(receiver);
    return Reading([&] {
        bool found = false;
        SqlRowPlan plan(kReceiverTable.fields);
        m_store.ForEachRow(Named("SELECT * FROM {receiver} WHERE ") + condition, [&](const SqlRow& row) {
            if (!std::exchange(found, true))
                plan.Read(row, *receiver);
        });
        if (!found)
            return false;
        ReadDeptRights(*receiver);
        if (withSchedules)
            ReadSchedules(*receiver);
        return true;
    });
}

void SqlReceiverLists::GetWhere(VK_RECEIVER_LIST* list, const std::string& condition)
{
    EmptyReceiverList(list);
    Reading([&] {
        ReadInto(*list, Named("SELECT * FROM {receiver} WHERE ") + condition + Named(kByName),
                 [](VK_RECEIVER&, const SqlRow&) {});
    });
}

void SqlReceiverLists::ReadDeptRights(VK_RECEIVER& receiver)
{
    m_store.SelectRecords<VK_DEPT_RIGHTS>(
        kReceiverDeptTable.fields,
        [&](const VK_DEPT_RIGHTS& rights, const SqlRow&) {
            AppendRecord(receiver.dept_rights, receiver.dept_rights_count, rights);
        },
        "SELECT * FROM {} WHERE owner_id={} ORDER BY id", kReceiverDeptTable.name, receiver.id);
}

void SqlReceiverLists::ReadSchedules(VK_RECEIVER& receiver)
{
    m_store.SelectRecords<VK_ONDUTY_SCHEDULE>(
        kReceiverScheduleTable.fields,
        [&](const VK_ONDUTY_SCHEDULE& schedule, const SqlRow&) {
            AppendRecord(receiver.schedules, receiver.schedule_count, schedule);
        },
        "SELECT * FROM {} WHERE owner_id={} AND member_id=0 ORDER BY id", kReceiverScheduleTable.name, receiver.id);
}

void SqlReceiverLists::GetNames(std::vector<VK_NAME_RECORD>& names)
{
    names.clear();
    ForEachFiltered({"{receiver}.id, {receiver}.name", false, ""}, [&](const SqlRow& row) {
        names.push_back({row.Unsigned(0), std::string(SqlColumn(row, 1).GetValueString())});
    });
}

void SqlReceiverLists::GetDepartments(std::map<unsigned long, unsigned long>& departments)
{
    departments.clear();
    ForEachFiltered({"{receiver}.id, {receiver}.department_id", false, ""},
                    [&](const SqlRow& row) { departments[row.Unsigned(0)] = row.Unsigned(1); });
}

void SqlReceiverLists::GetProperties(std::vector<VKReceProperty>& properties)
{
    properties.clear();
    const char* const columns = "{receiver}.id, {receiver}.two_way, {carrier}.protocol_id, {receiver}.is_secure, "
                                "{receiver}.type";
    ForEachFiltered({columns, true, ""}, [&](const SqlRow& row) {
        properties.push_back({row.Unsigned(0), row.Boolean(1), IsMxpProtocol(static_cast<int>(row.Integer(2))),
                              row.Boolean(3), row.Integer(4) == VKReceiverNumeric});
    });
}

void SqlReceiverLists::GetViews(VK_RECEIVER_VIEW_LIST* list, const SqlReceiverFilter& filter)
{
    EmptyReceiverViewList(list);
    std::string columns;
    ForEachField(kReceiverViewFields, [&](const auto& field) {
        std::string expression = std::string("{receiver}.") + field.name;
        if constexpr (std::decay_t<decltype(field)>::template has<SelectedAs>)
            expression = std::string(field.template mark<SelectedAs>().expression) + " AS " + field.name;
        columns += (columns.empty() ? "" : ", ") + expression;
    });
    const std::string query = Named("SELECT " + columns + " FROM {receiver}" + kCarrierJoin + kDepartmentJoin) +
                              SqlReceiverFilter::CoverJoin(m_store.Dialect()) + " " +
                              filter.Clause(m_store.Dialect()).Text() + Named(kByName);
    const auto carriers = m_files.Carriers();
    const auto departments = m_files.Departments();
    Reading([&] {
        m_store.SelectRecords<VK_RECEIVER_VIEW>(
            kReceiverViewFields,
            [&](VK_RECEIVER_VIEW& view, const SqlRow&) {
                if (*view.special_carrier != '\0')
                    SetText(view.carrier_name, view.special_carrier, "carrier_name");
                AddReceiverView(list, &view);
            },
            "{}", SqlRaw{query});
    });
}

} // namespace vk
