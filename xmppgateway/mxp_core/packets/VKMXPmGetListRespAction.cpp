#include "VKMXPmGetListRespAction.h"

#include "VKMXPmFields.h"

template class vk::mxp::TablePacket<VKMXPmGetListRespAction>;
