#pragma once

#include "AdminOutput.h"
#include "AdminRoot.h"
#include "RecordForm.h"
#include "VKDBexception.h"
#include "VKDatabase.h"

#include <string>
#include <vector>

namespace vk {

/// Frees a list of records at the end of a block.
template <class List, void (*Empty)(List*)>
struct ListGuard
{
    ~ListGuard() { Empty(&list); }
    List& list;
};

/// The verbs that every entity has. A noun says what it is called, how its record is described and which operations of
/// its store they are:
///
///     struct DepartmentNoun {
///         using Record = VK_DEPARTMENT;
///         static constexpr const char* kName = "department";
///         static constexpr const auto& kFields = kDepartmentTable.fields;
///         static constexpr const char* kColumns[] = {"id", "name"};   // of "list"
///         static constexpr Slice<ColumnWords> kWords{};
///         static constexpr auto kStore = &VKDatabase::getVKDBiDepartmentObject;
///         static bool Add(VKDBiDepartment& store, Record& record);    // the id comes back in the record
///         static void ForEach(VKDBiDepartment& store, Visit&& visit);
///         static void Empty(Record& record);                          // frees what a record owns
///     };
template <class Noun>
class EntityVerbs
{
public:
    static int Add(const Arguments& arguments)
    {
        Owned record;
        FillFromOptions(Noun::kFields, Noun::kWords, arguments, record.value);
        auto& store = Store(arguments);
        try {
            if (!Noun::Add(store, record.value))
                return Refused(std::string(Noun::kName) + " was not stored");
        } catch (const VKDBexception& error) {
            // Broken rules are the record's fault, everything else is the database's.
            if (error.GetErrorCode() != DbError::RuleOrConstraint && error.GetErrorCode() != DbError::DepartmentLimit)
                throw;
            return Refused(error.GetMsg());
        }
        PrintNewId(record.value.id, arguments.Has("--json"));
        return kExitOk;
    }

    static int Show(const Arguments& arguments)
    {
        RequireOneOf(arguments, "--id", "--name");
        auto& store = Store(arguments);
        Owned record;
        const std::string name = arguments.Text("--name");
        const bool found = arguments.Has("--id") ? store.GetByID(&record.value, IdOption(arguments))
                                                 : store.GetByName(&record.value, name);
        if (!found)
            return Refused(std::string("there is no ") + Noun::kName + " " + arguments.Text("--id", "'" + name + "'"));
        PrintRecord(Shown(record.value), arguments.Has("--json"));
        return kExitOk;
    }

    static int List(const Arguments& arguments)
    {
        std::vector<ShownRecord> shown;
        Noun::ForEach(Store(arguments), [&](const Record& record) { shown.push_back(Shown(record)); });
        PrintTable(shown, Noun::kColumns, arguments.Has("--json"));
        return kExitOk;
    }

private:
    using Record = typename Noun::Record;

    /// A record with what it owns.
    struct Owned
    {
        Owned() = default;
        ~Owned() { Noun::Empty(value); }
        Owned(const Owned&) = delete;
        Owned& operator=(const Owned&) = delete;

        Record value{};
    };

    static auto& Store(const Arguments& arguments)
    {
        return UseEntity(arguments, Noun::kStore);
    }

    static ShownRecord Shown(const Record& record)
    {
        return ShownValues(Noun::kFields, Noun::kWords, {}, record);
    }
};

} // namespace vk
