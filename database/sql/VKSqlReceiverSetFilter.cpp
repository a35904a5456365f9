#include "VKMD5.h"
#include "VKRecipientRights.h"
#include "VKSqlReceiverParts.h"

/// \file
/// What narrows the lists of receivers until the filter is cleared.

namespace vk {

namespace {

constexpr int kRecipientIsReceiver = 1;

/// The receivers of one user in a list of recipients.
template <class List> std::vector<unsigned long> ReceiversOf(const List& list, unsigned long userId)
{
    std::vector<unsigned long> ids;
    for (int i = 0; i < list.count; ++i)
        if (list.list[i].user_id == userId && list.list[i].recipient_type == kRecipientIsReceiver)
            ids.push_back(list.list[i].recipient_id);
    return ids;
}

bool Grants(const VK_DEPT_PERMISSION& permission, DeptPerm right)
{
    switch (right) {
    case DeptPermSendReceiver:
        return permission.send_receiver;
    case DeptPermSendGroup:
        return permission.send_group;
    case DeptPermModReceiver:
        return permission.mod_receiver > 0;
    case DeptPermModGroup:
        return permission.mod_group > 0;
    }
    return false;
}

} // namespace

// Filters.

void SqlReceiver::SetFilter(const std::string& name, const std::string& pin, unsigned long carrierId, int protocolId,
                            unsigned long departmentId, const std::string& coverName, FltNameLetter firstLetter)
{
    SqlReceiverFilter& filter = m_parts->lists.Filter();
    filter.name = name;
    filter.pin = pin;
    filter.carrierId = carrierId;
    filter.protocolId = protocolId;
    filter.departmentId = departmentId;
    filter.coverName = coverName;
    filter.firstLetter = firstLetter;
}

void SqlReceiver::SetFilter(FltEnabled available, FltEnabled voice, FltEnabled advancedMessaging)
{
    SqlReceiverFilter& filter = m_parts->lists.Filter();
    filter.available = available;
    filter.voice = voice;
    filter.advancedMessaging = advancedMessaging;
}

void SqlReceiver::SetFilter(VK_USER_GROUP* group, bool fullRights, DeptPerm right)
{
    auto& departments = m_parts->lists.Filter().departmentIds;
    departments.reset();
    if (fullRights || group == nullptr)
        return;
    departments.emplace();
    for (int i = 0; i < group->dept_perms.count; ++i)
        if (Grants(group->dept_perms.list[i], right))
            departments->push_back(group->dept_perms.list[i].department_id);
}

void SqlReceiver::SetFilter(VK_FAVORITE_LIST* favorites, unsigned long userId)
{
    m_parts->lists.Filter().favoriteIds = ReceiversOf(*favorites, userId);
}

void SqlReceiver::SetFilter(VK_RECIP_PERM_LIST* permissions, unsigned long userId)
{
    m_parts->lists.Filter().permittedIds = ReceiversOf(*permissions, userId);
}

void SqlReceiver::SetFilterOwner(unsigned long ownerId) { m_parts->lists.Filter().ownerId = ownerId; }

void SqlReceiver::SetFilterReceiverIDs(const std::vector<unsigned long>& ids)
{
    m_parts->lists.Filter().receiverIds = ids;
}

void SqlReceiver::SetFilterAttribute(const std::map<unsigned long, std::string>& values)
{
    m_parts->lists.Filter().attributes = values;
}

void SqlReceiver::SetFilterAccount(const std::string& accountName, const std::string& password)
{
    m_parts->lists.Filter().accountName = accountName;
    m_parts->lists.Filter().accountDigest = Md5Text(password);
}

void SqlReceiver::ClearFilter() { m_parts->lists.Filter() = {}; }

} // namespace vk
