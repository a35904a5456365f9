#pragma once

#include <gtest/gtest.h>

#include <memory>

#include "DatabaseErrors.h"
#include "TempDir.h"
#include "VKDBiDepartment.h"
#include "VKDBiReceiver.h"
#include "VKDBsystem.h"

/// A file database of its own for each test, and the global settings that entities look at as they are by default.
class FileDatabase : public testing::Test
{
protected:
    FileDatabase()
    {
        ResetSettings();
        system.OpenSdb(dir.Path().string(), "", nullptr, nullptr, 0, nullptr);
    }
    ~FileDatabase() override
    {
        ResetSettings();
        system.Close();
    }

    static void SetLimits(bool on, long most)
    {
        VKDBiDepartment::s_bRecLimit = on;
        VKDBiDepartment::s_lMaxMembers = most;
    }

    TempDir dir;
    VKDBsystem system;

private:
    static void ResetSettings()
    {
        SetLimits(false, 0);
        VKDBiReceiver::s_bIsCoverByAllowed = VKDBiDepartment::s_bCountGrp = false;
    }
};
