#pragma once

#include <gtest/gtest.h>

/// What the records of a test's installation stand on.
enum class Backend { Files, PostgreSql };

inline const char* NameOf(Backend backend) { return backend == Backend::Files ? "Files" : "PostgreSql"; }

/// Makes a suite run on both.
#define VK_ON_BOTH_BACKENDS(SUITE)                                                                                     \
    INSTANTIATE_TEST_SUITE_P(Backends, SUITE, testing::Values(Backend::Files, Backend::PostgreSql),                    \
                             [](const auto& row) { return NameOf(row.param); })
