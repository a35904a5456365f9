#pragma once

#include "RunningProgram.h"

#include <json/json.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

/// What a program printed, a JSON value a line.
inline std::vector<Json::Value> JsonLines(const std::string& out)
{
    std::vector<Json::Value> lines;
    std::istringstream in(out);
    for (std::string line; std::getline(in, line);)
        std::istringstream(line) >> lines.emplace_back();
    return lines;
}

/// It ended with this code and told why in one line on the error output, and nothing else.
inline void ExpectOneLine(const ProgramRun& run, int exitCode, const std::string& text)
{
    EXPECT_EQ(run.exitCode, exitCode) << text;
    EXPECT_EQ(run.out, "") << text;
    EXPECT_THAT(run.err, testing::HasSubstr(text));
    EXPECT_EQ(run.err.find('\n'), run.err.size() - 1) << run.err;
}
