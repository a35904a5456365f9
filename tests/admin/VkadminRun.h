#pragma once

#include "ProgramOutput.h"

/// The administrator's tool on a root of the test's own.
class Vkadmin : public testing::Test
{
protected:
    ProgramRun Admin(std::vector<std::string> words) const { return AdminOn(dir / "root", std::move(words)); }

    static ProgramRun AdminOn(const std::string& root, std::vector<std::string> words)
    {
        words.insert(words.begin(), {"--root", root});
        return ProgramRun::Of("vkadmin", words);
    }

    void Init() const
    {
        const ProgramRun run = Admin({"init"});
        ASSERT_EQ(run.exitCode, 0) << run.err;
    }

    std::string Add(std::vector<std::string> words) const
    {
        const ProgramRun run = Admin(std::move(words));
        EXPECT_EQ(run.exitCode, 0) << run.err;
        return run.out;
    }

    static std::vector<Json::Value> Lines(const std::string& out) { return JsonLines(out); }

    const TempDir dir;
};
