#pragma once

#include "VKSqlReceiver.h"
#include "VKSqlReceiverAttributes.h"
#include "VKSqlReceiverChange.h"
#include "VKSqlReceiverLists.h"
#include "VKSqlReceiverSchedules.h"

namespace vk {

/// The classes that do what SqlReceiver offers, on one store. Only SqlReceiver's own sources look in here.
struct SqlReceiver::Parts
{
    Parts(std::unique_ptr<SqlStore> ownStore, SqlReceiver& owner)
        : store(std::move(ownStore)), files(*store, owner), history(*store), change(*store, files, history),
          lists(*store, files, owner), schedules(*store), attributes(*store)
    {
    }

    /// Runs a SELECT that gives one number in a transaction of its own.
    template <class... Values> long Number(std::string_view pattern, const Values&... values)
    {
        return store->Shared([&] { return store->SelectNumber(pattern, values...); });
    }

    std::unique_ptr<SqlStore> store;
    SqlReceiverFiles files;
    SqlReceiverHistory history;
    SqlReceiverChange change;
    SqlReceiverLists lists;
    SqlReceiverSchedules schedules;
    SqlReceiverAttributes attributes;
};

} // namespace vk
