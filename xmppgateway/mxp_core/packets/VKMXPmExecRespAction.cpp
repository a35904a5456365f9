#include "VKMXPmExecRespAction.h"

#include "VKMXPmFields.h"

template class vk::TablePacket<VKMXPmExecRespAction>;
