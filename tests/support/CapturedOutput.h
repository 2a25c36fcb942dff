// What is printed on standard output while a function runs.
#pragma once

#include <gtest/gtest.h>

#include <string>

template <class Action>
std::string captureOutput(const Action& action) {
    testing::internal::CaptureStdout();
    action();
    return testing::internal::GetCapturedStdout();
}
