#include "VKMXPmGetListRecipients.h"

#include "VKMXPmFields.h"

template class vk::TablePacket<VKMXPmGetListRecipients>;
