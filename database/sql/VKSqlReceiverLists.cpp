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

/// Each row of a result as a record of a field table.
template <class Record, class Fields, class Take>
void ForEachRow(const VKDBiResultSet& rows, const Fields& fields, Take&& take)
{
    for (int row = 0; row < rows.GetReturnedRowsCount(); ++row) {
        Record record;
        ReadRow(fields, rows[row], record);
        take(record);
    }
}

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

/// Runs in the caller's transaction, with the carriers attached when the query or the filter needs them.
std::unique_ptr<VKDBiResultSet> SqlReceiverLists::SelectFiltered(const Query& query)
{
    const SqlDialect& dialect = m_store.Dialect();
    SqlClause clause = m_filter.Clause(dialect);
    if (!query.condition.empty())
        clause.AddRaw(query.condition);
    return m_store.Select("SELECT {} FROM {}{}{} {}{}", SqlRaw{Named(query.columns)}, kName,
                          SqlRaw{query.protocols ? Named(kCarrierJoin) : ""},
                          SqlRaw{m_filter.NeedsCover() ? SqlReceiverFilter::CoverJoin(dialect) : ""},
                          SqlRaw{clause.Text()}, SqlRaw{Named(kByName)});
}

void SqlReceiverLists::Get(VK_RECEIVER_LIST* list, const Extras& extras)
{
    EmptyReceiverList(list);
    const auto carriers = NeededCarriers(extras.protocols || m_filter.NeedsCarriers());
    m_store.Shared([&] {
        const auto rows =
            SelectFiltered({extras.protocols ? "{receiver}.*, {carrier}.protocol_id AS protocol_id" : "{receiver}.*",
                            extras.protocols, extras.onlyEnabled ? EnabledNow() : ""});
        for (int row = 0; row < rows->GetReturnedRowsCount(); ++row) {
            AppendRecord(list->list, list->count, VK_RECEIVER{});
            VK_RECEIVER& receiver = list->list[list->count - 1];
            m_owner.FillStructFromResultSet(&receiver, *rows, row);
            if (extras.protocols)
                receiver.protocol_id = (*rows)[row]["protocol_id"].GetValueUInt();
            if (extras.miscSettings)
                Decode(receiver);
        }
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
    const auto ownerOf = [&](unsigned long id) {
        const auto found = receivers.find(id);
        return found == receivers.end() ? nullptr : found->second;
    };
    if (extras.departments)
        ForEachRow<VK_DEPT_RIGHTS>(*m_store.Select("SELECT * FROM {} ORDER BY id", kReceiverDeptTable.name),
                                   kReceiverDeptTable.fields, [&](const VK_DEPT_RIGHTS& rights) {
                                       if (VK_RECEIVER* const owner = ownerOf(rights.owner_id))
                                           AppendRecord(owner->dept_rights, owner->dept_rights_count, rights);
                                   });
    if (extras.schedules)
        ForEachRow<VK_ONDUTY_SCHEDULE>(
            *m_store.Select("SELECT * FROM {} WHERE member_id=0 ORDER BY id", kReceiverScheduleTable.name),
            kReceiverScheduleTable.fields, [&](const VK_ONDUTY_SCHEDULE& schedule) {
                if (VK_RECEIVER* const owner = ownerOf(schedule.owner_id))
                    AppendRecord(owner->schedules, owner->schedule_count, schedule);
            });
}

void SqlReceiverLists::GetBrief(VK_RECEIVER_LIST* list, const char* columns, bool protocols)
{
    EmptyReceiverList(list);
    const auto carriers = NeededCarriers(protocols || m_filter.NeedsCarriers());
    const auto rows = m_store.Shared([&] {
        return SelectFiltered(
            {std::string(columns) + (protocols ? ", {carrier}.protocol_id AS protocol_id" : ""), protocols, ""});
    });
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
    m_store.Shared([&] {
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
    return m_store.Shared([&] {
        const auto rows = m_store.Select("SELECT * FROM {} WHERE {}", kName, SqlRaw{condition});
        if (!m_owner.FillStructFromResultSet(receiver, *rows, 0))
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
    const auto rows = m_store.Shared([&] {
        return m_store.Select(Named("SELECT * FROM {receiver} WHERE {}{}"), SqlRaw{condition}, SqlRaw{Named(kByName)});
    });
    for (int row = 0; row < rows->GetReturnedRowsCount(); ++row) {
        AppendRecord(list->list, list->count, VK_RECEIVER{});
        m_owner.FillStructFromResultSet(&list->list[list->count - 1], *rows, row);
    }
}

void SqlReceiverLists::ReadDeptRights(VK_RECEIVER& receiver)
{
    ForEachRow<VK_DEPT_RIGHTS>(
        *m_store.Select("SELECT * FROM {} WHERE owner_id={} ORDER BY id", kReceiverDeptTable.name, receiver.id),
        kReceiverDeptTable.fields,
        [&](const VK_DEPT_RIGHTS& rights) { AppendRecord(receiver.dept_rights, receiver.dept_rights_count, rights); });
}

void SqlReceiverLists::ReadSchedules(VK_RECEIVER& receiver)
{
    ForEachRow<VK_ONDUTY_SCHEDULE>(*m_store.Select("SELECT * FROM {} WHERE owner_id={} AND member_id=0 ORDER BY id",
                                                   kReceiverScheduleTable.name, receiver.id),
                                   kReceiverScheduleTable.fields, [&](const VK_ONDUTY_SCHEDULE& schedule) {
                                       AppendRecord(receiver.schedules, receiver.schedule_count, schedule);
                                   });
}

void SqlReceiverLists::GetNames(std::vector<VK_NAME_RECORD>& names)
{
    names.clear();
    const auto carriers = NeededCarriers(m_filter.NeedsCarriers());
    const auto rows = m_store.Shared([&] { return SelectFiltered({"{receiver}.id, {receiver}.name", false, ""}); });
    for (int row = 0; row < rows->GetReturnedRowsCount(); ++row)
        names.push_back({(*rows)[row][0].GetValueULong(), (*rows)[row][1].GetValueString()});
}

void SqlReceiverLists::GetDepartments(std::map<unsigned long, unsigned long>& departments)
{
    departments.clear();
    const auto carriers = NeededCarriers(m_filter.NeedsCarriers());
    const auto rows = m_store.Shared([&] {
        return SelectFiltered({"{receiver}.id, {receiver}.department_id", false, ""});
    });
    for (int row = 0; row < rows->GetReturnedRowsCount(); ++row)
        departments[(*rows)[row][0].GetValueULong()] = (*rows)[row][1].GetValueULong();
}

void SqlReceiverLists::GetProperties(std::vector<VKReceProperty>& properties)
{
    properties.clear();
    const auto carriers = NeededCarriers(true);
    const auto rows = m_store.Shared([&] {
        return SelectFiltered({"{receiver}.id, {receiver}.two_way, {carrier}.protocol_id, {receiver}.is_secure, "
                               "{receiver}.type",
                               true, ""});
    });
    for (int row = 0; row < rows->GetReturnedRowsCount(); ++row) {
        const VKDBiRow& fields = (*rows)[row];
        properties.push_back({fields[0].GetValueULong(), fields[1].GetValueBool(),
                              IsMxpProtocol(fields[2].GetValueInt()), fields[3].GetValueBool(),
                              fields[4].GetValueInt() == VKReceiverNumeric});
    }
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
    const auto rows = m_store.Shared([&] { return m_store.Select("{}", SqlRaw{query}); });
    ForEachRow<VK_RECEIVER_VIEW>(*rows, kReceiverViewFields, [&](VK_RECEIVER_VIEW& view) {
        if (*view.special_carrier != '\0')
            SetText(view.carrier_name, view.special_carrier, "carrier_name");
        AddReceiverView(list, &view);
    });
}

} // namespace vk
