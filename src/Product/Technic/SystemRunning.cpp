// The running flag and the record of why it fell.
#include "Product/Technic/SystemRunning.h"

#include <atomic>
#include <cstdio>

#include "Product/Technic/KXLogger.h"

namespace {

constexpr const char* StopLogPath = "/mnt/mtd/log/Reboot.log";
constexpr const char* StopLogTag = "SystemStop";
constexpr std::uint32_t StopLogSizeLimit = 10240;
constexpr std::uint32_t StopLogFileCount = 2;

std::atomic<bool> g_bRunning{true};

}  // namespace

bool isSystemRunning() noexcept {
    return g_bRunning;
}

void setSystemRunningFlag(bool bRunning, const std::string& strReason) {
    std::printf(
        "\n~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~setSystemRunningFlag"
        "~~~~~~~~~~~~~~~~~~~~~~~~~~~ Flag=%d Reason=%s\n",
        bRunning ? 1 : 0, strReason.c_str());
    if (!bRunning) {
        logToFile(StopLogPath, StopLogTag, strReason, StopLogSizeLimit, StopLogFileCount);
    }
    g_bRunning = bRunning;
}
