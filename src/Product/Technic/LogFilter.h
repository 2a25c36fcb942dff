// The console log: lines on standard output, silent until its threshold is raised.
//
// At level 3 whole command bodies are printed, credentials of other services inside them included.
#pragma once

#include <atomic>
#include <string>
#include <vector>

#include "Product/Technic/KXMutex.h"
#include "Product/Technic/LogThreshold.h"

// The process-wide settings of logMessage(). Safe from any thread.
class LogFilter {
public:
    static constexpr std::size_t MostFileNames = 50;

    // The filter of the process, made at first use, when the library is loaded at the latest, and
    // never destroyed.
    static LogFilter& instance();

    // A message passes if its level is at or below the threshold (0 at the start) and, when there
    // are file names, its source file is one of them. False, and nothing changes, when there are
    // more than 50 names.
    bool set(int nThreshold, const std::vector<std::string>& vecFileNames);

    // Switches the whole log off and on; on at the start.
    void setEnabled(bool bEnabled) noexcept { m_bEnabled = bEnabled; }

    bool passesLevel(int nLevel) const noexcept { return m_bEnabled && nLevel <= m_nThreshold; }
    bool passesFile(const char* pFileName) const;

private:
    std::atomic<bool> m_bEnabled{true};
    std::atomic<int> m_nThreshold{0};
    mutable KXMutex m_mutex;
    std::vector<std::string> m_vecFileNames KX_GUARDED_BY(m_mutex);
};

// Prints a formatted text; the format brings its own line end. pFileName is the bare name of the
// caller's source file and serves the filter only.
//
// Returns 0 when the message is filtered by its level, else the length of the formatted text. At
// most 2047 bytes are printed. In what is printed "%%" becomes "%" once more.
[[gnu::format(printf, 3, 4)]] int logMessage(int nLevel, const char* pFileName, const char* pFormat,
                                             ...);

// Receives what traceMessage() composes: text, " in:", file, " line:", number, line feed.
using TraceSink = void (*)(const std::string& strText);

// Sets the one receiver of traces, or none with null, which is how the process starts. Returns the
// receiver before. It is called on the tracing thread.
TraceSink setTraceSink(TraceSink pSink) noexcept;

// Tells a place in the source to the trace sink; without a sink nothing happens.
void traceMessage(const std::string& strText, const char* pFileName, int nLine);
