#include "VKSerialPorts.h"

#include "VKRecordList.h"

void EmptyPortInfo(VK_TGATE_PORTINFO_HEADER* ports) { vk::FreeRecords(ports->list, ports->count); }

void AddPortInfo(VK_TGATE_PORTINFO_HEADER* ports, const VK_TGATE_PORTINFO* port)
{
    vk::AppendRecord(ports->list, ports->count, *port);
}

void DuplicatePortInfo(VK_TGATE_PORTINFO_HEADER* to, const VK_TGATE_PORTINFO_HEADER* from)
{
    if (to == from)
        return;
    EmptyPortInfo(to);
    vk::CopyRecords(to->list, to->count, from->list, from->count);
}
