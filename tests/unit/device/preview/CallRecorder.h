// How a stand-in tells the test of its calls, and asks it for their results.
#pragma once

#include <cstdio>

#define PREVIEW_EXPORT extern "C" __attribute__((visibility("default")))

// Takes "Function argument argument"; gives the result of the call.
using CallRecorder = int(const char* szCall);

// Each stand-in is one source file, with a recorder of its own.
static CallRecorder* g_pRecorder = nullptr;

PREVIEW_EXPORT void recordCallsWith(CallRecorder* pRecorder) {
    g_pRecorder = pRecorder;
}

template <class... Args>
int record(const char* szFormat, Args... args) {
    char szCall[128];
    std::snprintf(szCall, sizeof szCall, szFormat, args...);
    return g_pRecorder(szCall);
}
