// A thread of the operating system with a careful handshake at start and stop.
#pragma once

#include <cstdint>
#include <string>

#include "Product/Technic/KXMutex.h"
#include "Product/Technic/platform/NativeThread.h"

// Runs the virtual run() on a thread of its own.
//
// start(), stop() and join() are called by one thread at a time; isRunning() by any. There is no
// forced end anywhere: stop() and join() wait for run() to return. A derived class calls stop() or
// join() in its own destructor, before its members go.
class KXThread {
public:
    enum Result : int {
        Done = 0,
        NotCreated = -2,
        AlreadyEnded = -4,
        AlreadyRunning = -5,
    };

    explicit KXThread(const std::string& strName);
    virtual ~KXThread();
    KXThread(const KXThread&) = delete;
    KXThread& operator=(const KXThread&) = delete;

    int start();  // Done, AlreadyRunning or NotCreated
    int stop();   // polls for at most 5 seconds, then does as join()
    int join();   // Done after waiting for the end, AlreadyEnded otherwise
    bool isRunning() const;

protected:
    // The work. Calls openStarted() first.
    virtual int run() = 0;

    // Lets start() return.
    void openStarted();

    std::string m_strName;
    std::int32_t m_nTuning = 0;  // part of the shape on devices; nothing reads it here

private:
    static void* enter(void* pThis);
    void runOnThread();
    void setRunning(bool bRunning);

    NativeThread m_handle;
    std::uint32_t m_nCreationId = 0;  // as the creation call gave it
    std::uint32_t m_nThreadId = 0;    // as the thread itself reads it
    mutable KXMutex m_stateMutex;
    std::int32_t m_nResult KX_GUARDED_BY(m_stateMutex) = 0;  // what run() returned
    bool m_bRunning KX_GUARDED_BY(m_stateMutex) = false;     // from start() to the end of run()
    KXMutex m_creationMutex;  // held by the starter while the thread is being created
    KXMutex m_startedMutex;   // held by the new thread until run() opens it
};
