#pragma once

#include "VKField.h"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <type_traits>

/// The global settings, byte for byte as they stand in the file "global" behind its header. Of most of the record only
/// its owner among the daemons knows the meaning; those fields are named by their offset. Numbers are in the machine's
/// byte order.
struct VK_GLOBAL_SETTINGS
{
    std::uint8_t reserved_0[4];
    std::uint32_t value_4;
    std::uint32_t value_8;
    std::uint32_t value_12;
    std::uint8_t reserved_16[8];
    std::uint32_t value_24;
    std::uint32_t value_28;
    std::uint8_t reserved_32[516];
    std::uint32_t value_548;
    std::uint32_t value_552;
    std::uint32_t value_556;
    std::uint32_t value_560;
    std::uint32_t value_564;
    std::uint32_t cluster_enabled;
    std::uint8_t reserved_572[1308];
    std::uint32_t value_1880;
    std::uint32_t value_1884;
    std::uint8_t reserved_1888[24];
    std::uint32_t cover_by_allowed; ///< whether a receiver may be covered by another
    std::uint8_t reserved_1916[396];
    std::int32_t value_2312;
    std::uint8_t reserved_2316[948];
    std::int32_t max_members;     ///< how many receivers a department may have
    std::uint32_t receiver_limit; ///< whether that limit holds
    std::uint8_t reserved_3272[516];
    std::uint32_t count_groups; ///< whether groups count as members too
    std::uint8_t reserved_3792[204];
    std::uint32_t value_3996;
    std::uint32_t value_4000;
    char text_4004[7]; ///< a colour
    std::uint8_t reserved_4011[93];
    std::int32_t value_4104;
    char proxy_host[256];    ///< "host:port" of the forward proxy, of which the push services make use
    char proxy_user[128];
    char proxy_password[128]; ///< never logged
    std::uint8_t reserved_4620[1740];
};
static_assert(sizeof(VK_GLOBAL_SETTINGS) == 6360 && std::is_trivially_copyable_v<VK_GLOBAL_SETTINGS>);
static_assert(offsetof(VK_GLOBAL_SETTINGS, value_28) == 28 && offsetof(VK_GLOBAL_SETTINGS, value_548) == 548 &&
              offsetof(VK_GLOBAL_SETTINGS, cluster_enabled) == 568 &&
              offsetof(VK_GLOBAL_SETTINGS, value_1884) == 1884 &&
              offsetof(VK_GLOBAL_SETTINGS, cover_by_allowed) == 1912 &&
              offsetof(VK_GLOBAL_SETTINGS, value_2312) == 2312 && offsetof(VK_GLOBAL_SETTINGS, max_members) == 3264 &&
              offsetof(VK_GLOBAL_SETTINGS, receiver_limit) == 3268 &&
              offsetof(VK_GLOBAL_SETTINGS, count_groups) == 3788 && offsetof(VK_GLOBAL_SETTINGS, value_4000) == 4000 &&
              offsetof(VK_GLOBAL_SETTINGS, text_4004) == 4004 && offsetof(VK_GLOBAL_SETTINGS, value_4104) == 4104 &&
              offsetof(VK_GLOBAL_SETTINGS, proxy_host) == 4108);

/// The file "sysinfo": the system attendant's record, of which only the attendant knows the meaning.
struct VK_SYSTEM_ATTENDANT_SETTINGS
{
    std::uint8_t bytes[1428];
};

namespace vk {

/// Mark: what the field holds when there is no file.
template <class Value> struct Default
{
    Value value;
};

/// Mark: a value outside is replaced after reading.
struct Range
{
    std::int64_t low;
    std::int64_t high;
    std::int64_t otherwise;
};

template <auto Member, class... Marks> constexpr auto Setting(const char* offset, std::uint32_t value, Marks... marks)
{
    return Field<Member>(offset, Default<std::uint32_t>{value}, marks...);
}

inline constexpr std::int64_t kNoLimit = std::numeric_limits<std::int64_t>::max();

/// Defaults and range checks of the fields that have some; a row's name is its offset.
inline constexpr auto kGlobalFields =
    Fields(Setting<&VK_GLOBAL_SETTINGS::value_4>("4", 200), Setting<&VK_GLOBAL_SETTINGS::value_8>("8", 20),
           Setting<&VK_GLOBAL_SETTINGS::value_12>("12", 10), Setting<&VK_GLOBAL_SETTINGS::value_24>("24", 50),
           Setting<&VK_GLOBAL_SETTINGS::value_28>("28", 1000),
           Setting<&VK_GLOBAL_SETTINGS::value_548>("548", 100, Range{0, 1000, 200}),
           Setting<&VK_GLOBAL_SETTINGS::value_552>("552", 100, Range{0, 1000, 200}),
           Setting<&VK_GLOBAL_SETTINGS::value_556>("556", 1, Range{1, kNoLimit, 1}),
           Setting<&VK_GLOBAL_SETTINGS::value_560>("560", 1), Setting<&VK_GLOBAL_SETTINGS::value_564>("564", 30),
           Setting<&VK_GLOBAL_SETTINGS::value_1880>("1880", 30), Setting<&VK_GLOBAL_SETTINGS::value_1884>("1884", 500),
           Setting<&VK_GLOBAL_SETTINGS::value_2312>("2312", 3, Range{3, kNoLimit, 3}),
           Setting<&VK_GLOBAL_SETTINGS::value_3996>("3996", 10), Setting<&VK_GLOBAL_SETTINGS::value_4000>("4000", 2),
           Field<&VK_GLOBAL_SETTINGS::text_4004>("4004", Default<const char*>{"FFFFFF"}),
           Setting<&VK_GLOBAL_SETTINGS::value_4104>("4104", 10, Range{1, 100, 10}));

} // namespace vk
