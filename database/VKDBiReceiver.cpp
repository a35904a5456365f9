#include "VKDBiReceiver.h"

#include <cstring>

#include "VKMD5.h"
#include "VKTableRow.h"

namespace {

/// Puts a text into a record's field while it lives, and the old one back after it.
template <std::size_t N> class Replaced
{
public:
    Replaced(char (&field)[N], const std::string& text) : m_field(field)
    {
        std::memcpy(m_before, field, N);
        vk::SetText(field, text, "acct_pwd");
    }
    ~Replaced()
    {
        std::memcpy(m_field, m_before, N);
        explicit_bzero(m_before, N);
    }
    Replaced(const Replaced&) = delete;
    Replaced& operator=(const Replaced&) = delete;

private:
    char (&m_field)[N];
    char m_before[N];
};

constexpr vk::CodeText<int> kTypeNames[] = {
    {VKReceiverAlpha, "Alpha"}, {VKReceiverNumeric, "Num"}, {VKReceiverTwoWay, "2Way"}, {VKReceiverFax, "Fax"}};

/// Runs a body with the record's texts as they are stored: the settings in their JSON, the password as its digest.
template <class Body> bool WithStoredTexts(VK_RECEIVER& receiver, bool hashPassword, Body&& body)
{
    ConvertMiscSettingsToJSON(&receiver, VKMiscSettingsMxp);
    const std::string_view clear = vk::GetText(receiver.acct_pwd, sizeof receiver.acct_pwd, "acct_pwd");
    if (!hashPassword || clear.empty())
        return body();
    const Replaced digest(receiver.acct_pwd, vk::Md5Text(clear));
    return body();
}

} // namespace

bool VKDBiReceiver::Add(VK_RECEIVER* receiver, bool hashPassword)
{
    return WithStoredTexts(*receiver, hashPassword, [&] { return AddImpl(receiver); });
}

bool VKDBiReceiver::Modify(VK_RECEIVER* receiver, unsigned long oldDepartmentId, bool hashPassword,
                           VK_DISABLE_HISTORY* update, VK_DISABLE_HISTORY* add, bool keepHistory)
{
    return WithStoredTexts(*receiver, hashPassword,
                           [&] { return ModifyImpl(receiver, oldDepartmentId, update, add, keepHistory); });
}

bool VKDBiReceiver::FillStructFromResultSet(VK_RECEIVER* receiver, VKDBiResultSet& result, int row)
{
    if (row < 0 || row >= result.GetReturnedRowsCount())
        return false;
    vk::ReadRow(vk::kReceiverTable.fields, result[row], *receiver);
    return true;
}

std::string VKDBiReceiver::GetReceiverTypeName(int type, bool showAlpha)
{
    return type == VKReceiverAlpha && !showAlpha ? "" : vk::TextOfCode(kTypeNames, type);
}
