#pragma once

#include <gtest/gtest.h>

#include <memory>

#include "TempDir.h"
#include "VKDBexception.h"
#include "VKDBiDepartment.h"
#include "VKDBiReceiver.h"
#include "VKDBsystem.h"

/// A file database of its own for each test, and the global settings that entities look at as they are by default.
class FileDatabase : public testing::Test
{
protected:
    FileDatabase()
    {
        SetLimits(false, 0);
        system.OpenSdb(dir.Path().string(), "", nullptr, nullptr, 0, nullptr);
    }
    ~FileDatabase() override
    {
        SetLimits(false, 0);
        system.Close();
    }

    static void SetLimits(bool on, long most)
    {
        VKDBiDepartment::s_bRecLimit = on;
        VKDBiDepartment::s_lMaxMembers = most;
    }

    /// The error of an operation as "code message"; empty when it throws none.
    template <class Operation> static std::string ErrorOf(Operation&& operation)
    {
        try {
            operation();
            return "";
        } catch (const VKDBexception& failure) {
            return std::to_string(failure.GetErrorCode()) + " " + failure.GetMsg();
        }
    }

    TempDir dir;
    VKDBsystem system;
};
