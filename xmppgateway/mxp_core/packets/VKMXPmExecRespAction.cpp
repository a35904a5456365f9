#include "VKMXPmExecRespAction.h"

#include "VKMXPmFields.h"

template class vk::mxp::TablePacket<VKMXPmExecRespAction>;
