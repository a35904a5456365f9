#pragma once

#include "ProgramRun.h"
#include "TempDir.h"

#include <json/json.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

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

    static std::vector<Json::Value> Lines(const std::string& out)
    {
        std::vector<Json::Value> lines;
        std::istringstream in(out);
        for (std::string line; std::getline(in, line);)
            std::istringstream(line) >> lines.emplace_back();
        return lines;
    }

    static void ExpectOneLine(const ProgramRun& run, int exitCode, const std::string& text)
    {
        EXPECT_EQ(run.exitCode, exitCode) << text;
        EXPECT_EQ(run.out, "") << text;
        EXPECT_THAT(run.err, testing::HasSubstr(text));
        EXPECT_EQ(run.err.find('\n'), run.err.size() - 1) << run.err;
    }

    const TempDir dir;
};
