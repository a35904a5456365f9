#pragma once

#include "EntityNoun.h"
#include "VKDBiDepartment.h"
#include "VKDepartment.h"

namespace vk {

struct DepartmentNoun
{
    using Record = VK_DEPARTMENT;

    static constexpr const char* kName = "department";
    static constexpr const auto& kFields = kDepartmentTable.fields;
    static constexpr const char* kColumns[] = {"id", "name", "max_receivers", "num_receivers", "description"};
    static constexpr Slice<ColumnWords> kWords{};

    static constexpr auto kStore = &VKDatabase::getVKDBiDepartmentObject;

    static bool Add(VKDBiDepartment& store, const Arguments&, Record& department) { return store.Add(&department); }

    template <class Change>
    static bool Modify(VKDBiDepartment& store, const Arguments& arguments, Record& department, Change&& change)
    {
        change();
        if (arguments.Has("--new-name"))
            SetFromText(department.name, arguments.Text("--new-name"), "--new-name");
        return store.Modify(&department);
    }

    static bool Delete(VKDBiDepartment& store, const Record& department) { return store.Delete(department.id); }

    static void Filter(VKDBiDepartment&, const Arguments&) {}
    static ShownRecord Details(VKDBiDepartment&, const Record&) { return {}; }

    template <class Visit>
    static void ForEach(VKDBiDepartment& store, Visit&& visit)
    {
        VK_DEPARTMENT_LIST list;
        const ListGuard<VK_DEPARTMENT_LIST, EmptyDepartmentList> guard{list};
        store.Get(&list);
        for (int i = 0; i < list.count; ++i)
            visit(list.list[i]);
    }

    static void Empty(Record&) {}
};

} // namespace vk
