#pragma once

#include <ctime>
#include <string>
#include <vector>

#include "VKDBbaseInterface.h"
#include "VKMessageHeader.h"

/// By what Get sorts.
enum SortFldOption : int {
    SortByCreateTime = 0,
    SortByModifyTime = 1,
    SortBySender = 2,
    SortByReceiver = 3,
    SortByGroup = 4,
    SortByCarrier = 5,
    SortByPriority = 6,
    SortByCascadeDelay = 7
};

/// The messages of one queue, whatever stores them. Several services in several processes share a queue: a poll hands
/// a message to one of them. docs/queues.md tells of names and states. Operations throw VKDBexception when the store
/// fails or a name is refused, and change nothing then; they return false where there is no such message. Lists and
/// contents must be initialised; they are emptied first and owned by the caller. One object serves one thread.
class VKDBiMessageQueue : public VKDBbaseInterface
{
public:
    /// A new object for a queue's number, owned by the caller. The service name may be empty where nothing is polled.
    static VKDBiMessageQueue* CreateInstance(VKDBsystem* system, int queueNumber, const std::string& serviceName);

    /// Stores a message; one of the same name is replaced. Sets the record's id and last_modify_time.
    virtual bool Add(VK_MESSAGE_CONTENT* content) = 0;
    /// Stores a changed message, found by its old name (empty: by the record's own).
    virtual bool Modify(VK_MESSAGE_CONTENT* content, const std::string& oldName) = 0;
    virtual bool Delete(const std::string& name) = 0;
    virtual bool DeleteMsgList(VK_MESSAGE_HEADER_LIST* list) = 0;
    virtual bool UpdateName(const std::string& oldName, const std::string& newName) = 0;
    virtual bool UpdateNameAndTime(const std::string& oldName, const std::string& newName, time_t time) = 0;
    virtual bool UpdateTime(const std::string& name, time_t time) = 0;
    /// Changes a name's letter: the prefix ("Q.") stands for the first two characters. False for a name without one.
    virtual bool Morph(const std::string& name, const std::string& prefix, bool withTime, time_t time) = 0;
    /// The messages that pass the filter, of the page when one is set. Without `full` only id, name, time of change and
    /// origin are read.
    virtual bool Get(VK_MESSAGE_HEADER_LIST* list, bool full) = 0;
    /// The messages that are ready, by priority and age. In all queues but 2 and 3 they belong to the service then:
    /// nobody else gets them before they are unlocked or renamed.
    virtual bool GetReadyMsg(VK_MESSAGE_HEADER_LIST* list, bool full) = 0;
    virtual bool GetByName(const std::string& name, VK_MESSAGE_CONTENT* content, bool full, bool body) = 0;
    /// All messages whose names begin so, with bodies. The caller empties each.
    virtual bool GetByNameList(const std::string& prefix, std::vector<VK_MESSAGE_CONTENT>& contents) = 0;
    virtual bool UnlockMsgList(VK_MESSAGE_HEADER_LIST* list) = 0;
    /// Gives back what a service held when it ended: to M, or to Q when it has been asked about. Call it when the
    /// service starts.
    virtual bool UnprocessMsgList(const std::string& serviceName) = 0;
    /// The same for what these services have held too long (1200 seconds), and for what is being sent by nobody.
    virtual bool UnprocessLockedUpMsgs(const std::vector<std::string>& services) = 0;
    virtual bool GetLockedUpMsgsServiceNames(std::vector<std::string>& services) = 0;
    /// Deletes messages in M, Q and R that have not changed for so many days, then the oldest beyond the count.
    virtual bool CleanupOldMsgs(int maxMessages, int days) = 0;
    virtual bool EmptyQueue() = 0;
    /// When the oldest message was made; 0 for an empty queue.
    virtual time_t GetOldestMsgTime() = 0;
    /// The count of all messages, whatever the filter.
    virtual long GetTotalRecordCount() = 0;
    /// The count of the messages that pass the filter, now.
    virtual long GetFilteredRecordCount() = 0;
    /// How many pages, and how many messages on all pages, the last Get or GetReadyMsg found.
    virtual int GetPageCount() = 0;
    virtual long GetTotalRecords() = 0;
    virtual bool IsUniqueName(const std::string& name) = 0;
    virtual bool IsMsgExisting(const std::string& name) = 0;
    /// Where the queue stands: its directory or its table.
    virtual std::string GetQueueName() = 0;
    /// Make and remove the place of a queue; one that holds messages is not removed.
    virtual bool CreateQueue(int queueNumber) = 0;
    virtual bool DeleteQueue(int queueNumber) = 0;
    virtual void SetOwnerServiceName(const std::string& serviceName) = 0;
    virtual void SetSort(SortFldOption field, bool ascending) = 0;
    /// Pages of pageSize messages, numbered from 1; a size of 0 for all.
    virtual void SetFilter(int pageSize, int pageNumber) = 0;
    /// A protocol pattern ("mxp*"), the beginning of a name or a status ("M."), and the time of the last change within
    /// a second; empty, "*" and 0 for any.
    virtual void SetFilter(const std::string& protocol, const std::string& nameOrStatus, time_t from, time_t to) = 0;
    virtual void SetFilterByPin(const std::string& protocol, const std::string& pin) = 0;
    /// Messages past their expiry_time. Meant: those without one, which hold 0, pass too.
    virtual void SetFilterExpired(bool expired) = 0;
    /// The filter of a list on a screen: beginnings of texts, spans of times; empty and 0 for any.
    virtual void SetFilterView(const std::string& name, const std::string& sender, const std::string& receiver,
                               const std::string& group, const std::string& pin, const std::string& carrier,
                               time_t from, time_t to, time_t modifiedFrom, time_t modifiedTo, int priority) = 0;
};

namespace vk {

/// The bit of a day in schd_days_to_send, by the tm_wday of `local`. Bit 8 is skipped on purpose.
int WeekdayBit(const tm& local);

} // namespace vk
