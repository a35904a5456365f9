#include "AttributeCommands.h"

#include "EntityNoun.h"
#include "VKDBiReceiver.h"

namespace vk {

namespace {

constexpr const char* kColumns[] = {"id", "name", "attr_order", "type", "attr_values"};

struct OwnedAttribute : VK_ATTRIBUTE
{
    OwnedAttribute() = default;
    ~OwnedAttribute() { EmptyAttribute(this); }
    OwnedAttribute(const OwnedAttribute&) = delete;
    OwnedAttribute& operator=(const OwnedAttribute&) = delete;
};

using AttributesGuard = ListGuard<VK_ATTRIBUTE_LIST, EmptyAttributeList>;

VKDBiReceiver& Store(const Arguments& arguments) { return UseEntity(arguments, &VKDatabase::getVKDBiReceiverObject); }

/// Runs a body on the attribute that --id names; there is no such one is told.
template <class Body> int WithAttribute(VKDBiReceiver& store, const Arguments& arguments, Body&& body)
{
    VK_ATTRIBUTE_LIST list;
    const AttributesGuard guard{list};
    store.GetAllAttributes(&list);
    const unsigned long id = IdOption(arguments);
    for (int i = 0; i < list.count; ++i)
        if (list.list[i].id == id)
            return UnlessRefused([&] { return body(list.list[i]); });
    return Refused("there is no attribute " + arguments.Text("--id"));
}

int Done(const Arguments& arguments, unsigned long id, const char* what)
{
    PrintDone("attribute " + std::to_string(id) + " " + what, {{"id", static_cast<Json::UInt64>(id)}, {what, true}},
              arguments.Has("--json"));
    return kExitOk;
}

} // namespace

int AddAttribute(const Arguments& arguments)
{
    OwnedAttribute attribute;
    FillFromOptions(kAttributeTable.fields, {}, arguments, static_cast<VK_ATTRIBUTE&>(attribute));
    VKDBiReceiver& store = Store(arguments);
    return UnlessRefused([&] {
        store.AddAttribute(&attribute);
        PrintNewId(attribute.id, arguments.Has("--json"));
        return static_cast<int>(kExitOk);
    });
}

int ModifyAttribute(const Arguments& arguments)
{
    VKDBiReceiver& store = Store(arguments);
    return WithAttribute(store, arguments, [&](VK_ATTRIBUTE& attribute) {
        const unsigned long id = attribute.id;
        FillFromOptions(kAttributeTable.fields, {}, arguments, attribute);
        store.ModifyAttribute(&attribute);
        return Done(arguments, id, "changed");
    });
}

int DeleteAttribute(const Arguments& arguments)
{
    VKDBiReceiver& store = Store(arguments);
    return WithAttribute(store, arguments, [&](VK_ATTRIBUTE& attribute) {
        if (const long used = store.GetAssociatedRecvCountByAttribute(attribute.id); used > 0)
            return Refused("attribute " + std::to_string(attribute.id) + " has a value at " + std::to_string(used) +
                           (used == 1 ? " receiver" : " receivers") + " and is kept");
        store.DeleteAttributeByID(attribute.id);
        return Done(arguments, attribute.id, "deleted");
    });
}

int ListAttributes(const Arguments& arguments)
{
    VK_ATTRIBUTE_LIST list;
    const AttributesGuard guard{list};
    Store(arguments).GetAllAttributes(&list);
    std::vector<ShownRecord> shown;
    for (int i = 0; i < list.count; ++i)
        shown.push_back(ShownValues(kAttributeTable.fields, {}, {}, list.list[i]));
    PrintTable(shown, kColumns, arguments.Has("--json"));
    return kExitOk;
}

} // namespace vk
