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

} // namespace

bool VKDBiReceiver::Add(VK_RECEIVER* receiver, bool hashPassword)
{
    ConvertMiscSettingsToJSON(receiver, VKMiscSettingsMxp);
    const std::string_view clear = vk::GetText(receiver->acct_pwd, sizeof receiver->acct_pwd, "acct_pwd");
    if (!hashPassword || clear.empty())
        return AddImpl(receiver);
    const Replaced digest(receiver->acct_pwd, vk::Md5Text(clear));
    return AddImpl(receiver);
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
