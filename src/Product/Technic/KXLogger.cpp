// Rotation and writing of the file log.
#include "Product/Technic/KXLogger.h"

#include <array>
#include <cstdio>
#include <mutex>

#include "Product/Technic/LogFilter.h"
#include "Product/Technic/platform/Clock.h"

using namespace fleetkit;

namespace {

constexpr std::uint32_t InitialisedKey = 0x99887766;
constexpr unsigned AppendMode = LogFile::Append | LogFile::Create;

}  // namespace

void KXLogger::init(const std::string& strPath, std::uint32_t nSizeLimit,
                    std::uint32_t nFileCount) {
    m_strPath = strPath;
    m_nSizeLimit = nSizeLimit;
    m_nFileCount = nFileCount;
    m_nKey = InitialisedKey;
}

void KXLogger::log(const std::string& strTag, const std::string& strMessage) {
    const std::string strLine =
        timeString(TimeFormat::YearFirst) + ",[" + strTag + "] " + strMessage + "\n";
    if (m_nKey != InitialisedKey) {
        logMessage(LogLevel::Trace, "KXLogger", "Logger is not inition,%s", strLine.c_str());
        return;
    }
    const std::lock_guard guard(m_mutex);
    if (!m_file.open(m_strPath, AppendMode) || !rotateIfFull()) {
        m_file.close();
        return;
    }
    m_file.write(strLine);
    m_file.flush();
    m_file.close();
}

bool KXLogger::rotateIfFull() {
    const std::int32_t nLength = m_file.getLength();
    if (nLength < 0) {
        return false;
    }
    if (static_cast<std::uint32_t>(nLength) < m_nSizeLimit) {
        return true;
    }
    m_file.close();
    const std::uint32_t nBackup = m_nBackupIndex + 1;
    const std::string strBackup = m_strPath + "." + std::to_string(nBackup);
    std::remove(strBackup.c_str());
    std::rename(m_strPath.c_str(), strBackup.c_str());
    if (!m_file.open(m_strPath, AppendMode)) {
        return false;
    }
    m_nBackupIndex = m_nFileCount == 0 ? 0 : nBackup % m_nFileCount;
    return true;
}

void logToFile(const std::string& strPath, const std::string& strTag, const std::string& strMessage,
               std::uint32_t nSizeLimit, std::uint32_t nFileCount) {
    KXLogger logger;
    logger.init(strPath, nSizeLimit, nFileCount);
    logger.log(strTag, strMessage);
}

std::string timeString(int nFormat) {
    const std::tm time = toLocalTime(currentClock().calendarTime());
    const int nYear = time.tm_year + 1900;
    const int nMonth = time.tm_mon + 1;
    std::array<char, 96> szText{};
    if (nFormat == TimeFormat::MonthFirst) {
        std::snprintf(szText.data(), szText.size(), "%02d/%02d/%04d %02d:%02d:%02d", nMonth,
                      time.tm_mday, nYear, time.tm_hour, time.tm_min, time.tm_sec);
    } else {
        std::snprintf(szText.data(), szText.size(), "%04d-%02d-%02d %02d:%02d:%02d", nYear, nMonth,
                      time.tm_mday, time.tm_hour, time.tm_min, time.tm_sec);
    }
    return szText.data();
}
