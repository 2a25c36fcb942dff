// The file log: dated lines in a small file, which is renamed to a backup when it is full.
#pragma once

#include <cstdint>
#include <string>

#include "Product/Technic/KXMutex.h"
#include "Product/Technic/LogFile.h"

// Appends lines "YYYY-MM-DD hh:mm:ss,[tag] message" to a file that is open only during a call.
//
// Every failure (no directory, no rights, full disk) is silent: the line is lost. log() may be
// called from any thread; init() comes before.
class KXLogger {
public:
    // nFileCount is the modulus of the backups' numbers: path.1 to path.nFileCount.
    void init(const std::string& strPath, std::uint32_t nSizeLimit, std::uint32_t nFileCount);

    // The size limit is checked before the line is written, so a file exceeds it by one line at
    // most. Before init() the line goes to logMessage() instead.
    void log(const std::string& strTag, const std::string& strMessage);

private:
    bool rotateIfFull();

    LogFile m_file;
    std::string m_strPath;
    std::uint32_t m_nFileCount = 0;
    std::uint32_t m_nSizeLimit = 0;
    std::uint32_t m_nBackupIndex = 0;
    KXMutexHandle m_mutex;
    std::uint32_t m_nKey = 0;
};

// One line through a logger of its own: one file and the one backup path.1, whatever nFileCount.
// Calls of several threads are not ordered.
void logToFile(const std::string& strPath, const std::string& strTag, const std::string& strMessage,
               std::uint32_t nSizeLimit, std::uint32_t nFileCount);

// Selectors of timeString().
namespace TimeFormat {
constexpr int MonthFirst = 1;  // "MM/DD/YYYY hh:mm:ss"
constexpr int YearFirst = 2;   // "YYYY-MM-DD hh:mm:ss", as is any other number
}  // namespace TimeFormat

// The local time of now.
std::string timeString(int nFormat);
