#include "VKMXPmSetMyStatus.h"

#include "VKMXPmFields.h"

template class vk::mxp::TablePacket<VKMXPmSetMyStatus>;
