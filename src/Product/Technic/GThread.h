// A background worker: a setup, a body called round after round, and a teardown.
#pragma once

#include <cstdint>
#include <string>

#include "Product/Technic/GThreadInfo.h"
#include "Product/Technic/KXFunction.h"
#include "Product/Technic/KXMutex.h"
#include "Product/Technic/KXThread.h"
#include "Product/Technic/SafePointer.h"

// Where the device side has its channel to threads; nothing in this library opens it.
inline constexpr const char* ThreadChannelPath = "/tmp/threadchannel";

// Order of use: construct, start(), in the end stop(), destroy. A stopped worker can be started
// again.
//
// The worker ends when it is stopped, when its body returns a number other than 0 or throws, or
// when the process-wide running flag falls. Setup and teardown run on the threads that call start()
// and stop(); the teardown runs once per start() that reached the setup, successful or not.
// start() and stop() may be called from any thread except from the body. The body does its own
// waiting: rounds follow one another without a pause.
//
// A std::exception out of any of the three is recorded in the thread exception log and clears the
// process-wide running flag, which ends every other GThread too.
class GThread : public KXThread {
public:
    using Function = KX_FUNCTION::function<int>;

    GThread(const Function& body, const std::string& strName, const Function& setup,
            const Function& teardown);
    ~GThread() noexcept override;

    // True when the worker runs, also when it did before. False when the setup failed or threw, or
    // the thread could not be created.
    bool start();

    // Waits for the end of the round under way, however long. False when the teardown failed.
    bool stop();

protected:
    int run() override;

    std::uint32_t m_nRoundsLeft = 0;  // 0 for no limit
    std::uint32_t m_nSkipCount = 0;   // rounds of one second's sleep between two calls of the body
    std::int32_t m_Result = 0;        // the last result of the body
    std::uint32_t m_nBodyCallCount = 0;
    std::uint64_t m_nLongestRound = 0;  // in whole seconds
    SafePointer<GThreadInfo> m_info;
    std::int32_t m_nReserved = 0;  // this and the next: part of the shape on devices, unread here
    bool m_bReserved = true;

private:
    bool runRound();
    bool setUp();
    bool tearDown();

    KXMutex m_mutex;  // held during start() and stop()
    Function m_setup;
    Function m_teardown;
    Function m_body;
    bool m_bSetupDone = false;
    std::uint32_t m_nRoundCounter = 0;
};
