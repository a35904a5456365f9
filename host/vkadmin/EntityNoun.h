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

/// Runs a body that gives back the exit code. Broken rules are the record's fault and told as that; all other failures
/// are the database's and thrown on.
template <class Body> int UnlessRefused(Body&& body)
{
    try {
        return body();
    } catch (const VKDBexception& error) {
        if (error.GetErrorCode() != DbError::RuleOrConstraint && error.GetErrorCode() != DbError::DepartmentLimit)
            throw;
        return Refused(error.GetMsg());
    }
}

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
///         static bool Add(VKDBiDepartment& store, const Arguments&, Record& record);   // the id comes back in the record
///         static bool Modify(VKDBiDepartment& store, const Arguments&, Record& record, Change&& change);
///         static bool Delete(VKDBiDepartment& store, const Record& record);
///         static void Filter(VKDBiDepartment& store, const Arguments&);                // what "list" is to show
///         static void ForEach(VKDBiDepartment& store, Visit&& visit);
///         static ShownRecord Details(VKDBiDepartment& store, const Record& record);    // shown behind the columns
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
        return UnlessRefused([&] {
            if (!Noun::Add(store, arguments, record.value))
                return Refused(std::string(Noun::kName) + " was not stored");
            PrintNewId(record.value.id, arguments.Has("--json"));
            return static_cast<int>(kExitOk);
        });
    }

    static int Modify(const Arguments& arguments)
    {
        auto& store = Store(arguments);
        Owned record;
        if (!Find(store, arguments, record.value))
            return kExitFailed;
        return UnlessRefused([&] {
            static constexpr const char* kSelectors[] = {"id", "name"};
            const auto change = [&] {
                FillFromOptions(Noun::kFields, Noun::kWords, arguments, record.value, kSelectors);
            };
            if (!Noun::Modify(store, arguments, record.value, change))
                return Refused(std::string(Noun::kName) + " was not stored");
            return Done(arguments, record.value, "changed");
        });
    }

    static int Delete(const Arguments& arguments)
    {
        auto& store = Store(arguments);
        Owned record;
        if (!Find(store, arguments, record.value))
            return kExitFailed;
        return UnlessRefused([&] {
            if (!Noun::Delete(store, record.value))
                return Refused(std::string(Noun::kName) + " was not deleted");
            return Done(arguments, record.value, "deleted");
        });
    }

    static int Show(const Arguments& arguments)
    {
        auto& store = Store(arguments);
        Owned record;
        if (!Find(store, arguments, record.value))
            return kExitFailed;
        ShownRecord shown = Shown(record.value);
        for (auto& detail : Noun::Details(store, record.value))
            shown.push_back(std::move(detail));
        PrintRecord(shown, arguments.Has("--json"));
        return kExitOk;
    }

    static int List(const Arguments& arguments)
    {
        std::vector<ShownRecord> shown;
        auto& store = Store(arguments);
        Noun::Filter(store, arguments);
        Noun::ForEach(store, [&](const Record& record) { shown.push_back(Shown(record)); });
        PrintTable(shown, Noun::kColumns, arguments.Has("--json"));
        return kExitOk;
    }

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

    static auto& Store(const Arguments& arguments) { return UseEntity(arguments, Noun::kStore); }

    /// The record that --id or --name names. False when there is none, which is told.
    template <class Entity> static bool Find(Entity& store, const Arguments& arguments, Record& record)
    {
        RequireOneOf(arguments, "--id", "--name");
        const std::string name = arguments.Text("--name");
        const bool found =
            arguments.Has("--id") ? store.GetByID(&record, IdOption(arguments)) : store.GetByName(&record, name);
        if (!found)
            Refused(std::string("there is no ") + Noun::kName + " " + arguments.Text("--id", "'" + name + "'"));
        return found;
    }

private:
    static int Done(const Arguments& arguments, const Record& record, const char* what)
    {
        PrintDone(std::string(Noun::kName) + " " + std::to_string(record.id) + " (" + record.name + ") " + what,
                  {{"id", static_cast<Json::UInt64>(record.id)}, {what, true}}, arguments.Has("--json"));
        return kExitOk;
    }

    static ShownRecord Shown(const Record& record)
    {
        return ShownValues(Noun::kFields, Noun::kWords, {}, record);
    }
};

} // namespace vk
