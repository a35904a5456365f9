#pragma once

#include "VKTableField.h"

/// When a receiver, or a member of a group, is on duty. Times of day in system time; dates in seconds since the epoch.
/// The weekly and the monthly form share two fields; scd_type tells which is meant.
struct VK_ONDUTY_SCHEDULE
{
    unsigned long id = 0;
    unsigned long owner_id = 0;  ///< receiver or group
    unsigned long member_id = 0; ///< group member, 0 for a receiver's own schedule
    int member_type = 0;
    char name[51] = {};
    int start_hour = 0;
    int start_minute = 0;
    int end_hour = 0; ///< 24 with end_minute 0 is the end of the day
    int end_minute = 0;
    int duration = 0; ///< minutes
    int num_days = 0; ///< length of a monthly occurrence; -1 to the end of the month
    long recur_start_date = 0;
    int recur_end_type = 0; ///< 0 no end, 1 after recur_occurances, 2 at recur_end_date
    int recur_occurances = 0;
    long recur_end_date = 0;
    int scd_type = 0;                     ///< 0 weekly, 1 monthly, 2 one time
    int week_increment_or_month_type = 0; ///< weekly: every n weeks; monthly: 0 by day of month, 1 by weekday
    int week_days_or_day_of_month = 0;    ///< weekly: bit set of days; monthly: 1 to 31
    int monthly_month_increment_1 = 0;
    int monthly_at_week_of_month = 0; ///< 1 to 4, -1 for the last
    int monthly_at_day_of_week = 0;   ///< 0 Sunday to 6 Saturday
    int monthly_month_increment_2 = 0;
    bool archived = false; ///< an archived schedule never counts
};

namespace vk {

inline constexpr Table kReceiverScheduleTable{
    TableName{"receiver_schd", "VK_RECEIVER_SCHD"},
    Fields(
        Field<&VK_ONDUTY_SCHEDULE::id>("id", PrimaryKey{}),
        Field<&VK_ONDUTY_SCHEDULE::owner_id>("owner_id", Indexed{"ix_rcvrschd_owner_id"}),
        Field<&VK_ONDUTY_SCHEDULE::member_id>("member_id"), Field<&VK_ONDUTY_SCHEDULE::member_type>("member_type"),
        Field<&VK_ONDUTY_SCHEDULE::name>("name", NotNull{}, Indexed{"ix_rcvrschd_name"}),
        Field<&VK_ONDUTY_SCHEDULE::start_hour>("start_hour"), Field<&VK_ONDUTY_SCHEDULE::start_minute>("start_minute"),
        Field<&VK_ONDUTY_SCHEDULE::end_hour>("end_hour"), Field<&VK_ONDUTY_SCHEDULE::end_minute>("end_minute"),
        Field<&VK_ONDUTY_SCHEDULE::duration>("duration"), Field<&VK_ONDUTY_SCHEDULE::num_days>("num_days"),
        Field<&VK_ONDUTY_SCHEDULE::recur_start_date>("recur_start_date"),
        Field<&VK_ONDUTY_SCHEDULE::recur_end_type>("recur_end_type"),
        Field<&VK_ONDUTY_SCHEDULE::recur_occurances>("recur_occurances"),
        Field<&VK_ONDUTY_SCHEDULE::recur_end_date>("recur_end_date"), Field<&VK_ONDUTY_SCHEDULE::scd_type>("scd_type"),
        Field<&VK_ONDUTY_SCHEDULE::week_increment_or_month_type>("weekly_week_increment"),
        Field<&VK_ONDUTY_SCHEDULE::week_days_or_day_of_month>("weekly_days"),
        Field<&VK_ONDUTY_SCHEDULE::week_increment_or_month_type>("monthly_recur_type"),
        Field<&VK_ONDUTY_SCHEDULE::week_days_or_day_of_month>("monthly_at_day_of_month"),
        Field<&VK_ONDUTY_SCHEDULE::monthly_month_increment_1>("monthly_month_increment_1"),
        Field<&VK_ONDUTY_SCHEDULE::monthly_at_week_of_month>("monthly_at_week_of_month"),
        Field<&VK_ONDUTY_SCHEDULE::monthly_at_day_of_week>("monthly_at_day_of_week"),
        Field<&VK_ONDUTY_SCHEDULE::monthly_month_increment_2>("monthly_month_increment_2"),
        Field<&VK_ONDUTY_SCHEDULE::archived>("archived", Indexed{"ix_rcvrschd_archived"}))};

} // namespace vk
