#include "VKMXPmMessage.h"

#include "VKMXPmFields.h"

template class vk::mxp::TablePacket<VKMXPmMessage>;
