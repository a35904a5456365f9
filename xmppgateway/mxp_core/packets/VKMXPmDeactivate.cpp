#include "VKMXPmDeactivate.h"

#include "VKMXPmFields.h"

template class vk::mxp::TablePacket<VKMXPmDeactivate>;
