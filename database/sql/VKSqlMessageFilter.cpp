#include "VKSqlMessageFilter.h"

#include "VKSqlClause.h"

namespace vk {

namespace {

/// A waiting message is offered again after this many seconds.
constexpr long kWaitSeconds = 1800;
constexpr long kDaySeconds = 86400;
/// A scheduled message may be this many minutes late.
constexpr int kScheduleSpanMinutes = 29;

void AddSpan(SqlClause& clause, const char* column, time_t from, time_t to)
{
    const SqlRaw name{column};
    if (from != 0 && to != 0)
        clause.Add("{} BETWEEN {} AND {}", name, from, to);
    else if (from != 0)
        clause.Add("{}>={}", name, from);
    else if (to != 0)
        clause.Add("{}<={}", name, to);
}

void AddReady(SqlClause& clause, const std::string& service, time_t now)
{
    clause.Add("((lock_time=0 OR last_lock_owner_svc_name={}) AND (msg_status IN ('M','D','E','F') OR (msg_status='Q' "
               "AND next_query_time<={}) OR (msg_status='R' AND last_lock_owner_svc_name={} AND last_modify_time<{}) "
               "OR (msg_status='W' AND last_modify_time<{})))",
               service, now, service, now - kHeldTooLong, now - kWaitSeconds);
}

void AddSchedule(SqlClause& clause, time_t now)
{
    tm local{};
    localtime_r(&now, &local);
    tm midnight = local;
    midnight.tm_hour = midnight.tm_min = midnight.tm_sec = 0;
    midnight.tm_isdst = -1; // the clock may have been changed since
    const time_t today = mktime(&midnight);
    const int minute = local.tm_hour * 60 + local.tm_min;
    // In brackets of its own: another filter beside it must hold for both alternatives.
    clause.Add("((schd_date_to_send=0 AND (((schd_days_to_send & 256)=0) OR (schd_last_send_time=0 OR "
               "schd_last_send_time NOT BETWEEN {} AND {})) AND ((schd_days_to_send & {})>0) AND schd_time_in_mins "
               "BETWEEN {} AND {}) OR (schd_date_to_send<>0 AND (schd_date_to_send + (schd_time_in_mins * 60)) <= {}))",
               today, today + kDaySeconds - 1, WeekdayBit(local), minute - kScheduleSpanMinutes, minute, now);
}

const char* SortColumn(SortFldOption field)
{
    switch (field) {
    case SortByModifyTime: return "last_modify_time ";
    case SortBySender: return "sender_name ";
    case SortByReceiver: return "receiver_name ";
    case SortByGroup: return "rcv_group_name ";
    case SortByCarrier: return "carrier_name ";
    case SortByPriority: return "priority ";
    case SortByCascadeDelay: return "casc_delay_mins ";
    case SortByCreateTime: break;
    }
    return "create_time ";
}

} // namespace

std::string MessageFilterClause(const SqlDialect& dialect, const MessageFilter& filter, ReadyOption option,
                                const std::string& service, time_t now)
{
    SqlClause clause(dialect);
    if (filter.name.size() == 2 && filter.name[1] == '.')
        clause.Add("msg_status={}", filter.name.substr(0, 1));
    else
        clause.AddBeginning("msg_name", filter.name);
    if (!filter.protocol.empty() && filter.protocol != "*")
        clause.AddRaw(dialect.Matches("msg_protocol", filter.protocol));
    if (!filter.pin.empty() && filter.pin != "*")
        clause.AddRaw(dialect.MatchesNoCase("pin", filter.pin));
    AddSpan(clause, "last_modify_time", filter.from, filter.to);
    if (filter.expired)
        clause.Add("expiry_time<{}", now);
    if (option == ReadyOption::Normal)
        AddReady(clause, service, now);
    else if (option == ReadyOption::Cascade)
        clause.Add("(create_time+(casc_delay_mins*60))<{}", now);
    else if (option == ReadyOption::Schedule)
        AddSchedule(clause, now);

    if (filter.priority != 0)
        clause.Add("priority={}", filter.priority);
    clause.AddBeginning("sender_name", filter.sender);
    clause.AddBeginning("receiver_name", filter.receiver);
    clause.AddBeginning("rcv_group_name", filter.group);
    clause.AddBeginning("pin", filter.pinBeginning);
    clause.AddBeginning("carrier_name", filter.carrier);
    AddSpan(clause, "create_time", filter.createdFrom, filter.createdTo);
    return clause.Text();
}

std::string MessageOrder(ReadyOption option, SortFldOption field, bool ascending)
{
    if (option != ReadyOption::All)
        return "priority ASC, last_modify_time ASC, create_time ASC";
    return std::string(SortColumn(field)) + (ascending ? "ASC" : "DESC");
}

int WeekdayBit(const tm& local)
{
    constexpr int kBits[] = {1, 2, 4, 16, 32, 64, 128};
    return kBits[local.tm_wday];
}

} // namespace vk
