#include "VKMXPmSendMsgResponse.h"

#include "VKMXPmFields.h"

template class vk::TablePacket<VKMXPmSendMsgResponse>;
