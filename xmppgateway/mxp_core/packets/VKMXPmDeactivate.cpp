#include "VKMXPmDeactivate.h"

#include "VKMXPmFields.h"

template class vk::TablePacket<VKMXPmDeactivate>;
