// A log file of the test's own.
#pragma once

#include <gtest/gtest.h>

#include <windows.h>

#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>

namespace vantor {

class LoggingTest : public ::testing::Test {
protected:
    LoggingTest() { std::remove(m_path.c_str()); }
    ~LoggingTest() override { std::remove(m_path.c_str()); }

    std::string FileText() const
    {
        std::ifstream file(m_path, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    const std::string m_path = "logging_test_" + std::to_string(::GetCurrentProcessId()) + ".log";
};

} // namespace vantor
