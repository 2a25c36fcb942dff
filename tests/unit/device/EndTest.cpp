// Ends that come in the middle of calls: of the process, of a child, of a thread.
#include <gtest/gtest.h>
#include <pthread.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cstdlib>
#include <future>
#include <memory>
#include <thread>
#include <vector>

#include "device/FleetKit.h"
#include "device/Login.h"
#include "domain/DeviceInfoEx.h"
#include "domain/DeviceTime.h"
#include "protocol/CommandCatalogue.h"
#include "support/ChildProcess.h"
#include "support/ScriptedPeer.h"

using namespace fleetkit;

namespace {

bool g_bEnding = false;

// Registered before everything that is destroyed at exit, this comes last of all: a search for
// leaks finds what threads at work have in their hands.
__attribute__((constructor(101))) void endWithoutLeakCheck() {
    std::atexit([] {
        if (g_bEnding) {
            _exit(testing::Test::HasFailure() ? 1 : 0);
        }
    });
}

[[noreturn]] void endProcess() {
    alarm(30);
    g_bEnding = true;
    std::exit(0);
}

// Answers whatever it is asked, without the records asked for.
std::string answer(const PeerRequest& request) {
    return peerAnswer(request, findCommand(request.m_head.getCommandID())->nResponseId,
                      peerResult(0, "<SessionId SessionId=\"77\" />"));
}

long loginTo(const ScriptedPeer& peer) {
    long handle = 0;
    EXPECT_EQ(FleetKit::Login(peer.getDeviceInfo(), handle), ErrorCode::Success);
    return handle;
}

}  // namespace

TEST(End, OfTheProcessWhileThreadsAreInTheLibrary) {
    for (int nRound = 0; nRound < 10; ++nRound) {
        outputOfChild([] {
            // Never destroyed, as what the library has for these threads.
            static auto& device = *std::make_unique<ScriptedPeer>(answerEach(answer)).release();
            static const long handle = loginTo(device);
            static auto& silent =
                *std::make_unique<ScriptedPeer>(answerEach([](const PeerRequest&) {
                     return "";
                 })).release();
            static std::atomic<int> nCalls{0};
            const auto work = [](const auto& call) {
                std::thread([=] {
                    for (;;) {
                        call();
                        ++nCalls;
                    }
                }).detach();
            };
            work([] {
                long none = 0;
                login(silent.getDeviceInfo(), none);
            });
            for (int nThread = 0; nThread < 3; ++nThread) {
                work([] {
                    DeviceTime time;
                    FleetKit::getDeviceTime(handle, time);
                });
                work([] {
                    long another = 0;
                    if (FleetKit::Login(device.getDeviceInfo(), another) == 0) {
                        FleetKit::Logout(another);
                    }
                });
            }
            while (nCalls < 10) {
                std::this_thread::yield();
            }
            endProcess();
        });
    }
}

TEST(End, OfAChildLeavesTheSessionsToItsParent) {
    outputOfChild([] {
        ScriptedPeer device(answerEach(answer));
        const long handle = loginTo(device);
        DeviceTime time;
        for (const bool bExecutes : {false, true}) {
            const pid_t nChild = fork();
            if (nChild == 0) {
                if (bExecutes) {
                    execl("/bin/true", "true", nullptr);
                }
                endProcess();
            }
            int nStatus = -1;
            ASSERT_EQ(waitpid(nChild, &nStatus, 0), nChild);
            EXPECT_EQ(nStatus, 0);
            EXPECT_EQ(FleetKit::getDeviceTime(handle, time), ErrorCode::BadReply);
        }
    });
}

TEST(End, OfACancelledThreadComesAfterItsCall) {
    outputOfChild([] {
        std::promise<void> asked;
        std::promise<void> cancelled;
        ScriptedPeer peer(answerEach([&](const PeerRequest& request) {
            asked.set_value();
            cancelled.get_future().wait();
            return answer(request);
        }));
        std::atomic<int> nCode{ErrorCode::Failed};
        std::thread caller([&] {
            long handle = 0;
            nCode = login(peer.getDeviceInfo(), handle);
            pthread_testcancel();
            nCode = ErrorCode::Failed;
        });
        asked.get_future().wait();
        EXPECT_EQ(pthread_cancel(caller.native_handle()), 0);
        cancelled.set_value();
        caller.join();
        EXPECT_EQ(nCode, ErrorCode::Success);
        _exit(testing::Test::HasFailure() ? 1 : 0);  // the device would be asked once more
    });
}
