#pragma once

#include "VKDBfilter.h"

/// \file
/// What narrows a list of receivers to what a user may see or has marked. The arrays belong to their owners (malloc).

/// The right on a department that a filter asks for.
enum DeptPerm : int { DeptPermSendReceiver = 0, DeptPermSendGroup = 1, DeptPermModReceiver = 2, DeptPermModGroup = 3 };

/// The rights of a user group on one department.
struct VK_DEPT_PERMISSION
{
    unsigned long id = 0;
    unsigned long user_group_id = 0;
    unsigned long department_id = 0;
    bool send_receiver = false;
    bool send_group = false;
    int mod_receiver = 0; ///< above 0 grants
    int mod_group = 0;
};

struct VK_DEPT_PERMS
{
    int count = 0;
    VK_DEPT_PERMISSION* list = nullptr;
};

/// What the filters need of a user group.
struct VK_USER_GROUP
{
    unsigned long id = 0;
    VK_DEPT_PERMS dept_perms;
};

/// A single recipient that a user may use.
struct VK_RECIP_PERM
{
    unsigned long id = 0;
    unsigned long user_id = 0;
    unsigned long recipient_id = 0;
    int recipient_type = 0; ///< 1 for a receiver
};

struct VK_RECIP_PERM_LIST
{
    int count = 0;
    VK_RECIP_PERM* list = nullptr;
};

/// A recipient that a user has marked.
struct VK_FAVORITE
{
    unsigned long id = 0;
    unsigned long user_id = 0;
    unsigned long recipient_id = 0;
    int recipient_type = 0; ///< 1 for a receiver
};

struct VK_FAVORITE_LIST
{
    int count = 0;
    VK_FAVORITE* list = nullptr;
};
