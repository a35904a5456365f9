#pragma once

#include <tuple>

#include "VKActiveMxpClient.h"
#include "VKCarrier.h"
#include "VKDepartment.h"
#include "VKReceiver.h"
#include "VKUser.h"
#include "VKXmppGWUser.h"

/// \file
/// All tables of the system. Whoever goes through every store, to make it, to copy it, walks this list; a new entity
/// joins it with a line.

namespace vk {

/// Tables that stand together in one file of the file database and are copied together, all or none.
template <class... Tables> struct TableFamily
{
    const char* name;
    const char* file;
    std::tuple<Tables...> tables;
};

template <class... Tables>
constexpr TableFamily<Tables...> Family(const char* name, const char* file, const Tables&... tables)
{
    return {name, file, std::tuple<Tables...>(tables...)};
}

/// A family stands behind those that it refers to.
inline constexpr auto kTableFamilies =
    std::tuple(Family("departments", "departments.sdb", kDepartmentTable),
               Family("carriers", "carriers.sdb", kCarrierTable),
               Family("receivers", "receivers.sdb", kReceiverTable, kReceiverDeptTable, kReceiverScheduleTable,
                      kDisableHistoryTable, kAttributeTable, kReceiverAttributeTable),
               Family("users", "users.sdb", kUserTable), Family("gateway users", "xmpp_gw_users.sdb", kXmppGWUserTable),
               Family("clients", "active_mxp_clients.sdb", kActiveMxpClientTable));

/// Calls visit(family) for each, in order.
template <class Visit> void ForEachFamily(Visit&& visit)
{
    std::apply([&](const auto&... families) { (static_cast<void>(visit(families)), ...); }, kTableFamilies);
}

/// Calls visit(table) for each table of a family, in order.
template <class Family, class Visit> void ForEachTable(const Family& family, Visit&& visit)
{
    std::apply([&](const auto&... tables) { (static_cast<void>(visit(tables)), ...); }, family.tables);
}

} // namespace vk
