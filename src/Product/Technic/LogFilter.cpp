// Filtering, cutting and printing of log messages.
#include "Product/Technic/LogFilter.h"

#include <algorithm>
#include <array>
#include <cstdarg>
#include <cstdio>
#include <memory>

using namespace fleetkit;

namespace {

constexpr std::size_t BufferSize = 2048;

std::atomic<TraceSink> g_pTraceSink{nullptr};

// Prints the text as printf prints a format without conversions: "%%" becomes "%".
void printUnescaped(const char* pText) {
    std::string strOut;
    for (const char* pNext = pText; *pNext != '\0'; ++pNext) {
        if (pNext[0] == '%' && pNext[1] == '%') {
            ++pNext;
        }
        strOut += *pNext;
    }
    std::fwrite(strOut.data(), 1, strOut.size(), stdout);
}

}  // namespace

LogFilter& LogFilter::instance() {
    static LogFilter* const pInstance = std::make_unique<LogFilter>().release();
    return *pInstance;
}

namespace {

// Made when the library is loaded, so that a message needs no memory, the first one neither.
[[maybe_unused]] const LogFilter& g_filterAtLoad = LogFilter::instance();

}  // namespace

bool LogFilter::set(int nThreshold, const std::vector<std::string>& vecFileNames) {
    if (vecFileNames.size() > MostFileNames) {
        return false;
    }
    const KXMutexGuard guard(m_mutex);
    m_vecFileNames = vecFileNames;
    m_nThreshold = nThreshold;
    return true;
}

bool LogFilter::passesFile(const char* pFileName) const {
    const KXMutexGuard guard(m_mutex);
    if (m_vecFileNames.empty()) {
        return true;
    }
    return pFileName != nullptr && std::find(m_vecFileNames.begin(), m_vecFileNames.end(),
                                             pFileName) != m_vecFileNames.end();
}

bool fleetkit::setLogFilter(int nThreshold, const std::vector<std::string>& vecFileNames) {
    return LogFilter::instance().set(nThreshold, vecFileNames);
}

int logMessage(int nLevel, const char* pFileName, const char* pFormat, ...) {
    const LogFilter& filter = LogFilter::instance();
    if (!filter.passesLevel(nLevel)) {
        return 0;
    }
    std::array<char, BufferSize> szText{};
    std::va_list arguments;
    va_start(arguments, pFormat);
    const int nLength = std::vsnprintf(szText.data(), szText.size(), pFormat, arguments);
    va_end(arguments);
    if (nLength > 0 && filter.passesFile(pFileName)) {
        printUnescaped(szText.data());
    }
    return nLength;
}

TraceSink setTraceSink(TraceSink pSink) noexcept {
    return g_pTraceSink.exchange(pSink);
}

void traceMessage(const std::string& strText, const char* pFileName, int nLine) {
    const TraceSink pSink = g_pTraceSink;
    if (pSink != nullptr) {
        pSink(strText + " in:" + pFileName + " line:" + std::to_string(nLine) + "\n");
    }
}
