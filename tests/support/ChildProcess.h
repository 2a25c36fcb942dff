// Runs a part of a test in a process and a working directory of its own.
#pragma once

#include <gtest/gtest.h>
#include <stdio.h>
#include <sys/wait.h>
#include <unistd.h>

#include <exception>
#include <filesystem>
#include <functional>
#include <string>

#include "support/TempDir.h"

struct ChildResult {
    int m_nExitCode = -1;     // 0 when every check of the body held; -1 when it was killed
    std::string m_strOutput;  // its standard output, failed checks included
};

// Process-wide state that the body changes is gone with the child. Call it before the test has
// started threads.
inline ChildResult runInChild(const std::function<void()>& body) {
    const TempDir dir;
    const std::string strOutput = dir.file("output");
    fflush(stdout);
    const pid_t nChild = fork();
    if (nChild == 0) {
        if (freopen(strOutput.c_str(), "w", stdout) == nullptr) {
            _exit(2);
        }
        try {
            std::filesystem::current_path(dir.getPath());
            body();
        } catch (const std::exception& error) {
            ADD_FAILURE() << "the child threw " << error.what();
        }
        fflush(stdout);
        _exit(testing::Test::HasFailure() ? 1 : 0);
    }
    ChildResult result;
    int nStatus = 0;
    if (nChild > 0 && waitpid(nChild, &nStatus, 0) == nChild && WIFEXITED(nStatus)) {
        result.m_nExitCode = WEXITSTATUS(nStatus);
    }
    result.m_strOutput = readFile(strOutput);
    return result;
}

// The output of a child that has to hold all its checks.
inline std::string outputOfChild(const std::function<void()>& body) {
    const ChildResult result = runInChild(body);
    EXPECT_EQ(result.m_nExitCode, 0) << result.m_strOutput;
    return result.m_strOutput;
}
