#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "VKDBiReceiver.h"
#include "VKSqlReceiverFiles.h"
#include "VKSqlReceiverFilter.h"

namespace vk {

/// What reads receivers: single ones, lists by the filter, views. Each operation is one transaction.
class SqlReceiverLists
{
public:
    /// All must outlive the object; the owner's system has the event log.
    SqlReceiverLists(SqlStore& store, SqlReceiverFiles& files, VKDBiReceiver& owner)
        : m_store(store), m_files(files), m_owner(owner)
    {
    }

    /// What comes with a list besides its rows.
    struct Extras
    {
        bool departments = false;
        bool schedules = false;
        bool miscSettings = false; ///< decoded
        bool protocols = false;
        bool onlyEnabled = false;
    };

    SqlReceiverFilter& Filter() { return m_filter; }

    void Get(VK_RECEIVER_LIST* list, const Extras& extras);
    void GetBrief(VK_RECEIVER_LIST* list, const char* columns, bool protocols);
    void GetForScheduler(VK_RECEIVER_LIST* list, bool withSchedules);
    bool GetOne(VK_RECEIVER* receiver, const std::string& condition, bool withSchedules = false);
    void GetWhere(VK_RECEIVER_LIST* list, const std::string& condition);
    void GetNames(std::vector<VK_NAME_RECORD>& names);
    void GetDepartments(std::map<unsigned long, unsigned long>& departments);
    void GetProperties(std::vector<VKReceProperty>& properties);
    void GetViews(VK_RECEIVER_VIEW_LIST* list, const SqlReceiverFilter& filter);

    /// A condition that is true for a receiver that is disabled at a time.
    std::string DisabledAt(long time) const;

private:
    struct Query
    {
        std::string columns;
        bool protocols = false; ///< joins the carrier
        std::string condition;  ///< beside the filter
    };

    std::string Filtered(const Query& query) const;
    void ForEachFiltered(const Query& query, const SqlRowReader& take);
    template <class Finish> void ReadInto(VK_RECEIVER_LIST& list, const std::string& query, Finish&& finish);
    std::unique_ptr<SqlAttachment> NeededCarriers(bool needed);
    std::string Named(std::string_view pattern) const { return NameTables(m_store.Dialect(), pattern); }
    /// Runs a body in a transaction; errors do not show the digest that the filter looks for.
    template <class Body> auto Reading(Body&& body)
    {
        return SqlStore::HidingTexts({m_filter.accountDigest}, [&] { return m_store.Shared(body); });
    }
    std::string EnabledNow() const;
    void ReadDeptRights(VK_RECEIVER& receiver);
    void ReadSchedules(VK_RECEIVER& receiver);
    void Decode(VK_RECEIVER& receiver);
    void AddParts(VK_RECEIVER_LIST& list, const Extras& extras);

    SqlStore& m_store;
    SqlReceiverFiles& m_files;
    VKDBiReceiver& m_owner;
    SqlReceiverFilter m_filter;
};

} // namespace vk
