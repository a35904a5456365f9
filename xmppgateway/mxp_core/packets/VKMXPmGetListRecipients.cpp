#include "VKMXPmGetListRecipients.h"

#include "VKMXPmFields.h"

template class vk::mxp::TablePacket<VKMXPmGetListRecipients>;
