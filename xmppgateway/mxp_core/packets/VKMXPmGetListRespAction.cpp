#include "VKMXPmGetListRespAction.h"

#include "VKMXPmFields.h"

template class vk::TablePacket<VKMXPmGetListRespAction>;
