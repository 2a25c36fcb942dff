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

// The standard output of a child that runs the body, failed checks included; it has to end with 0.
// Process-wide state that the body changes is gone with the child. Call it before the test has
// started threads.
inline std::string outputOfChild(const std::function<void()>& body) {
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
    int nStatus = -1;
    EXPECT_EQ(waitpid(nChild, &nStatus, 0), nChild);
    const std::string strPrinted = readFile(strOutput);
    EXPECT_EQ(nStatus, 0) << strPrinted;
    return strPrinted;
}
