#pragma once

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "VKDBiMessageQueue.h"
#include "VKMessageBodies.h"
#include "VKSqlMessageFilter.h"
#include "VKSqlStore.h"

namespace vk {

/// A queue on any SQL backend. A backend's class derives from it, opens its connection, and says where the bodies are.
class SqlMessageQueue : public VKDBiMessageQueue
{
public:
    SqlMessageQueue(int queueNumber, const std::string& serviceName);
    ~SqlMessageQueue() override;

    bool Add(VK_MESSAGE_CONTENT* content) override;
    bool Modify(VK_MESSAGE_CONTENT* content, const std::string& oldName) override;
    bool Delete(const std::string& name) override;
    bool DeleteMsgList(VK_MESSAGE_HEADER_LIST* list) override;
    bool UpdateName(const std::string& oldName, const std::string& newName) override;
    bool UpdateNameAndTime(const std::string& oldName, const std::string& newName, time_t time) override;
    bool UpdateTime(const std::string& name, time_t time) override;
    bool Morph(const std::string& name, const std::string& prefix, bool withTime, time_t time) override;
    bool Get(VK_MESSAGE_HEADER_LIST* list, bool full) override;
    bool GetReadyMsg(VK_MESSAGE_HEADER_LIST* list, bool full) override;
    bool GetByName(const std::string& name, VK_MESSAGE_CONTENT* content, bool full, bool body) override;
    bool GetByNameList(const std::string& prefix, std::vector<VK_MESSAGE_CONTENT>& contents) override;
    bool UnlockMsgList(VK_MESSAGE_HEADER_LIST* list) override;
    bool UnprocessMsgList(const std::string& serviceName) override;
    bool UnprocessLockedUpMsgs(const std::vector<std::string>& services) override;
    bool GetLockedUpMsgsServiceNames(std::vector<std::string>& services) override;
    bool CleanupOldMsgs(int maxMessages, int days) override;
    bool EmptyQueue() override;
    time_t GetOldestMsgTime() override;
    long GetTotalRecordCount() override;
    long GetFilteredRecordCount() override;
    int GetPageCount() override { return m_iPageCount; }
    long GetTotalRecords() override { return m_lTotalRecords; }
    bool IsUniqueName(const std::string& name) override;
    bool IsMsgExisting(const std::string& name) override;
    std::string GetQueueName() override { return m_bodies->Place(); }
    void SetOwnerServiceName(const std::string& serviceName) override { m_strService = serviceName; }
    void SetSort(SortFldOption field, bool ascending) override;
    void SetFilter(int pageSize, int pageNumber) override;
    void SetFilter(const std::string& protocol, const std::string& nameOrStatus, time_t from, time_t to) override;
    void SetFilterByPin(const std::string& protocol, const std::string& pin) override;
    void SetFilterExpired(bool expired) override { m_filter.expired = expired; }
    void SetFilterView(const std::string& name, const std::string& sender, const std::string& receiver,
                       const std::string& group, const std::string& pin, const std::string& carrier, time_t from,
                       time_t to, time_t modifiedFrom, time_t modifiedTo, int priority) override;
    void ClearFilter() override;
    void ClearSort() override;

protected:
    /// Statements carry lists of ids and texts of up to 255 bytes, all values doubled at most.
    static constexpr std::size_t kStatementLimit = 65535;

    void UseStore(std::unique_ptr<SqlStore> store, std::unique_ptr<MessageBodies> bodies, const TableName& table);
    int QueueNumber() const { return m_iQueueNumber; }

    /// The time that locks, ages and schedules are counted in.
    virtual time_t Now() const { return time(nullptr); }

private:
    using Names = std::vector<std::string>;
    using Ids = std::vector<unsigned long>;

    template <class Body> auto InQueue(TransactionLock lock, Body&& body);
    template <class Body> auto Change(Body&& body) { return InQueue(TransactionLock::Exclusive, body); }
    template <class Body> auto Read(Body&& body) { return InQueue(TransactionLock::Shared, body); }

    bool GetImpl(VK_MESSAGE_HEADER_LIST* list, bool full, ReadyOption option);
    std::string PageStatement(bool full, const std::string& filter, const std::string& order) const;
    long PageOffset() const { return (std::max(m_iPageNumber, 1) - 1L) * m_iPageSize; }
    std::unique_ptr<VKDBiResultSet> SelectFirst(const std::string& columns, const std::string& from,
                                                const std::string& order, long size, long offset);
    void CountPages(const std::string& filter, long read, long returned);
    bool Rename(const std::string& oldName, const std::string& newName, const time_t* time);
    void Release(const std::string& owner, const std::string& which);
    long DeleteRows(const std::string& condition);
    Names SelectNames(const std::string& condition);
    std::string NameClause(const std::string& name) const;
    template <class Run> void ForIds(const Ids& ids, Run&& run);

    const int m_iQueueNumber;
    std::string m_strService;
    TableName m_table{};
    std::unique_ptr<SqlStore> m_store;
    std::unique_ptr<MessageBodies> m_bodies;
    MessageFilter m_filter;
    SortFldOption m_sortField = SortByCreateTime;
    bool m_bAscending = true;
    int m_iPageSize = 0;
    int m_iPageNumber = 0;
    int m_iPageCount = 0;
    long m_lTotalRecords = 0;
    std::vector<VK_MESSAGE_HEADER> m_read; ///< and not yet in the caller's list; its memory serves poll after poll
};

} // namespace vk
