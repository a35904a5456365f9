#include "VKDBiXmppGWUser.h"

std::string VKDBiXmppGWUser::GetUserTypeString(VKXmppGWUserType type)
{
    return vk::TextOfCode(vk::kXmppGWUserTypes, static_cast<int>(type), "None");
}

VKXmppGWUserType VKDBiXmppGWUser::GetUserType(const std::string& word)
{
    return static_cast<VKXmppGWUserType>(
        vk::CodeOfText(vk::kXmppGWUserTypes, word, static_cast<int>(VKXmppGWUserNone), vk::Case::Ignored));
}
