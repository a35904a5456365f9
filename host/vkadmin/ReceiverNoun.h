#pragma once

#include "EntityNoun.h"
#include "VKDBiReceiver.h"
#include "VKReceiver.h"

namespace vk {

struct ReceiverNoun
{
    using Record = VK_RECEIVER;

    static constexpr const char* kName = "receiver";
    static constexpr const auto& kFields = kReceiverTable.fields;
    static constexpr const char* kColumns[] = {"id", "name", "pin", "type", "department_id", "description"};
    static constexpr CodeText<int> kTypes[] = {
        {VKReceiverAlpha, "alpha"}, {VKReceiverNumeric, "numeric"}, {VKReceiverTwoWay, "two-way"}, {VKReceiverFax, "fax"}};
    static constexpr ColumnWords kWords[] = {{"type", kTypes}};

    static constexpr auto kStore = &VKDatabase::getVKDBiReceiverObject;

    static bool Add(VKDBiReceiver& store, Record& receiver)
    {
        constexpr int available = 1;
        receiver.status_code = available;
        receiver.two_way = receiver.type == VKReceiverTwoWay;
        return store.Add(&receiver, true);
    }

    template <class Visit>
    static void ForEach(VKDBiReceiver& store, Visit&& visit)
    {
        VK_RECEIVER_LIST list;
        const ListGuard<VK_RECEIVER_LIST, EmptyReceiverList> guard{list};
        store.Get(&list);
        for (int i = 0; i < list.count; ++i)
            visit(list.list[i]);
    }

    static void Empty(Record& receiver) { EmptyReceiver(&receiver); }
};

} // namespace vk
