#include "VKDBiActiveMxpClient.h"

std::string VKDBiActiveMxpClient::GetActivationModeString(VKActivationMode mode)
{
    return vk::TextOfCode(vk::kActivationModes, static_cast<int>(mode));
}

VKActivationMode VKDBiActiveMxpClient::GetActivationMode(const std::string& word)
{
    return static_cast<VKActivationMode>(
        vk::CodeOfText(vk::kActivationModes, word, static_cast<int>(VKActivationModeNone), vk::Case::Ignored));
}
