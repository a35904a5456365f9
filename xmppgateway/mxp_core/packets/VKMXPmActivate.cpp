#include "VKMXPmActivate.h"

#include "VKMXPmFields.h"

template class vk::mxp::TablePacket<VKMXPmActivate>;
