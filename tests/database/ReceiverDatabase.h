#pragma once

#include <memory>
#include <string>

#include "BackendDatabase.h"
#include "RecordColumns.h"
#include "VKDBiCarrier.h"
#include "VKRDBReceiver.h"
#include "VKSQLite3Receiver.h"

/// A receiver whose arrays go with it.
struct Receiver : VK_RECEIVER
{
    Receiver() = default;
    /// An available one. Among the values, "guest" stands for a guest department.
    Receiver(const std::string& device, const std::string& address, const ColumnValues& values = {})
    {
        Set({{"name", device}, {"pin", address}, {"status_code", 1}});
        Set(values);
    }
    Receiver(const Receiver&) = delete;
    Receiver& operator=(const Receiver&) = delete;
    ~Receiver() { EmptyReceiver(this); }

    void Set(const ColumnValues& values)
    {
        for (const ColumnValue& value : values)
            if (value.column == "guest")
                AddDeptRights(this, std::stoul(value.text));
            else
                SetColumns(vk::kReceiverTable.fields, *this, {value});
    }
    std::string operator[](const std::string& columns) const
    {
        return Columns(vk::kReceiverTable.fields, *this, columns);
    }
    /// All that is stored of it.
    std::string Text() const
    {
        std::string text = AllColumns(vk::kReceiverTable.fields, *this);
        for (int i = 0; i < dept_rights_count; ++i)
            text += "guest=" + std::to_string(dept_rights[i].department_id) + "\n";
        return text;
    }
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
using Attributes = OwnedList<VK_ATTRIBUTE_LIST, EmptyAttributeList>;
using AttributeValues = OwnedList<VK_RECEIVER_ATTRIBUTE_LIST, EmptyReceiverAttributeList>;

/// Columns of a list's receivers: "a b c" for the names.
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

    /// The receivers without their rules.
    auto MakeReceiverStore() { return MakeStore<vk::SqlReceiver, VKSQLite3Receiver, VKRDBReceiver>(); }

    unsigned long AddDepartment(const char* name, long most = -1)
    {
        VK_DEPARTMENT department;
        SetColumns(vk::kDepartmentTable.fields, department, {{"name", name}, {"max_receivers", most}});
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

    /// Stores a receiver, with the address "pin.<name>" unless another is given; gives back its id.
    unsigned long Store(const std::string& name, const ColumnValues& values = {})
    {
        Receiver receiver(name, "pin." + name, values);
        receivers->Add(&receiver, false);
        return receiver.id;
    }

    /// Columns of the stored receiver of an id; "none" when there is none.
    std::string Stored(unsigned long id, const std::string& columns)
    {
        Receiver read;
        return receivers->GetByID(&read, id) ? read[columns] : "none";
    }

    static VK_RECEIVER_ATTRIBUTE AttributeValue(unsigned long receiver, unsigned long attribute, const char* text)
    {
        VK_RECEIVER_ATTRIBUTE value;
        value.receiver_id = receiver;
        value.attribute_id = attribute;
        vk::SetText(value.attribute_values, text, "attribute_values");
        return value;
    }

    /// The disable history: "100-200 300-0 ".
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
