#pragma once

#include <memory>
#include <string>

#include "BackendDatabase.h"
#include "VKDBiCarrier.h"
#include "VKRecordText.h"

/// A receiver whose arrays go with it.
struct Receiver : VK_RECEIVER
{
    Receiver() = default;
    Receiver(const std::string& device, const std::string& address)
    {
        vk::SetText(name, device, "name");
        vk::SetText(pin, address, "pin");
        status_code = 1;
    }
    Receiver(const Receiver&) = delete;
    Receiver& operator=(const Receiver&) = delete;
    ~Receiver() { EmptyReceiver(this); }
};

/// A list of records that is freed with the block.
template <class List, void (*Empty)(List*)> struct OwnedList : List
{
    OwnedList() = default;
    OwnedList(const OwnedList&) = delete;
    OwnedList& operator=(const OwnedList&) = delete;
    ~OwnedList() { Empty(this); }
};
using Receivers = OwnedList<VK_RECEIVER_LIST, EmptyReceiverList>;
using ReceiverViews = OwnedList<VK_RECEIVER_VIEW_LIST, EmptyReceiverViewList>;
using Histories = OwnedList<VK_DISABLE_HISTORY_LIST, EmptyDisableHistoryList>;

/// The names of a list's records: "a b c".
template <class List> std::string NamesOf(const List& list)
{
    std::string names;
    for (int i = 0; i < list.count; ++i)
        names += (names.empty() ? "" : " ") + std::string(list.list[i].name);
    return names;
}

/// Receivers with all that they point to, on either backend.
class ReceiverDatabase : public BackendDatabase
{
protected:
    ReceiverDatabase() { receivers.reset(VKDBiReceiver::CreateInstance(&system)); }
    ~ReceiverDatabase() override { VKDBiReceiver::s_bIsCoverByAllowed = VKDBiDepartment::s_bCountGrp = false; }

    unsigned long AddDepartment(const char* name, long most = -1)
    {
        VK_DEPARTMENT department;
        vk::SetText(department.name, name, "name");
        department.max_receivers = most;
        std::unique_ptr<VKDBiDepartment>(VKDBiDepartment::CreateInstance(&system))->Add(&department);
        return department.id;
    }

    unsigned long AddCarrier(const char* name, int protocol, const char* pinTemplate = "")
    {
        VK_CARRIER carrier;
        vk::SetText(carrier.name, name, "name");
        vk::SetText(carrier.pin_template, pinTemplate, "pin_template");
        carrier.protocol_id = protocol;
        std::unique_ptr<VKDBiCarrier>(VKDBiCarrier::CreateInstance(&system))->Add(&carrier);
        return carrier.id;
    }

    /// Stores a receiver after `change` has been made to it; gives back its id.
    template <class Change> unsigned long Store(const std::string& name, Change&& change)
    {
        Receiver receiver(name, "pin." + name);
        change(receiver);
        receivers->Add(&receiver, false);
        return receiver.id;
    }
    unsigned long Store(const std::string& name)
    {
        return Store(name, [](Receiver&) {});
    }

    std::string Periods(unsigned long receiverId)
    {
        Histories histories;
        receivers->GetDisableHistory(&histories, receiverId, 0, 0);
        std::string text;
        for (int i = 0; i < histories.count; ++i)
            text += std::to_string(histories.list[i].disable_start_date) + "-" +
                    std::to_string(histories.list[i].disable_end_date) + " ";
        return text;
    }

    std::unique_ptr<VKDBiReceiver> receivers;
};
