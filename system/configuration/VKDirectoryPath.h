#pragma once

#include "VKField.h"

#include <type_traits>

/// The server's directories, as the file "dir" names them. A block of 16 paths, zero-filled; database code copies it
/// as it stands.
struct VK_DIRECTORY_PATH
{
    char spool_dir[256];
    char cascade_dir[256];
    char schedule_dir[256];
    char archive_dir[256];
    char log_dir[256];
    char error_dir[256];
    char report_dir[256];
    char reserved[256];
    char stat_dir[256];
    char fax_dir[256];
    char voice_dir[256];
    char wap_dir[256];
    char snmp_spool_dir[256]; ///< never read from the file, which keeps it in spool_dir
    char filter_dir[256];
    char attachment_dir[256];
    char waiting_dir[256];
};
static_assert(sizeof(VK_DIRECTORY_PATH) == 4096 && std::is_trivially_copyable_v<VK_DIRECTORY_PATH>);

/// A message queue beside the ones above.
struct VK_QUEUE_DIRECTORY_PATH
{
    int id;
    char name[51];
    char path[256];
};
static_assert(sizeof(VK_QUEUE_DIRECTORY_PATH) == 312);

namespace vk {

/// Mark: a line with this key is read into the main spool.
struct ReadAsSpool
{
};

/// The keys of the file "dir", in the order in which they are written.
inline constexpr auto kDirectoryFields = Fields(
    Field<&VK_DIRECTORY_PATH::spool_dir>("spool_dir"),
    // Meant: the value of this one overrides that of the one above.
    Field<&VK_DIRECTORY_PATH::snmp_spool_dir>("snmp_spool_dir", ReadAsSpool{}),
    Field<&VK_DIRECTORY_PATH::cascade_dir>("cascade_dir"), Field<&VK_DIRECTORY_PATH::schedule_dir>("schedule_dir"),
    Field<&VK_DIRECTORY_PATH::archive_dir>("archive_dir"), Field<&VK_DIRECTORY_PATH::log_dir>("log_dir"),
    Field<&VK_DIRECTORY_PATH::error_dir>("error_dir"), Field<&VK_DIRECTORY_PATH::filter_dir>("filter_dir"),
    Field<&VK_DIRECTORY_PATH::report_dir>("report_dir"), Field<&VK_DIRECTORY_PATH::stat_dir>("stat_dir"),
    Field<&VK_DIRECTORY_PATH::wap_dir>("wap_dir"), Field<&VK_DIRECTORY_PATH::fax_dir>("fax_dir"),
    Field<&VK_DIRECTORY_PATH::voice_dir>("voice_dir"), Field<&VK_DIRECTORY_PATH::attachment_dir>("attachment_dir"),
    Field<&VK_DIRECTORY_PATH::waiting_dir>("waiting_dir"));

} // namespace vk
