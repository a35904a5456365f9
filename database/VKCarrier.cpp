#include "VKCarrier.h"

#include <cstdlib>

void EmptyCarrier(VK_CARRIER* carrier)
{
    std::free(carrier->carrier_data);
    *carrier = VK_CARRIER{};
}
