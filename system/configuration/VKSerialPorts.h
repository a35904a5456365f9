#pragma once

#include "VKField.h"

/// A serial line, from the file "ports".
struct VK_TGATE_PORTINFO
{
    char serial_port[256] = {};
    char init_string[256] = {};
    char auto_answer_string[256] = {};
    int baud_rate = 0;
    int data_bits = 0;
    int stop_bits = 0;
    char parity[32] = {};
    int reset_delay = 0;   ///< as the file has it
    int max_idle_time = 0; ///< as the file has it
    bool is_leased = false;
    char flow_control[32] = {};
};

/// Serial lines in an array that the header owns (malloc).
struct VK_TGATE_PORTINFO_HEADER
{
    int count = 0;
    VK_TGATE_PORTINFO* list = nullptr;
};

/// Frees the array and zeroes the header.
void EmptyPortInfo(VK_TGATE_PORTINFO_HEADER* ports);
/// Adds a copy at the end.
void AddPortInfo(VK_TGATE_PORTINFO_HEADER* ports, const VK_TGATE_PORTINFO* port);
/// Makes `to` a copy; its old elements are freed.
void DuplicatePortInfo(VK_TGATE_PORTINFO_HEADER* to, const VK_TGATE_PORTINFO_HEADER* from);

namespace vk {

/// The children of a "port" element.
inline constexpr auto kPortFields = Fields(
    Field<&VK_TGATE_PORTINFO::serial_port>("serial_port"), Field<&VK_TGATE_PORTINFO::init_string>("init_string"),
    Field<&VK_TGATE_PORTINFO::auto_answer_string>("auto_answer_string"),
    Field<&VK_TGATE_PORTINFO::baud_rate>("baud_rate"), Field<&VK_TGATE_PORTINFO::data_bits>("data_bits"),
    Field<&VK_TGATE_PORTINFO::stop_bits>("stop_bits"), Field<&VK_TGATE_PORTINFO::parity>("parity"),
    Field<&VK_TGATE_PORTINFO::reset_delay>("reset_delay"), Field<&VK_TGATE_PORTINFO::max_idle_time>("max_idle_time"),
    Field<&VK_TGATE_PORTINFO::is_leased>("is_leased"), Field<&VK_TGATE_PORTINFO::flow_control>("flow_control"));

} // namespace vk
