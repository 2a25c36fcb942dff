// A device that this process is logged in to, and that shows what it was asked.
#pragma once

#include <gtest/gtest.h>

#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "device/FleetKit.h"
#include "domain/EtResult.h"
#include "protocol/CommandCatalogue.h"
#include "protocol/CommandIds.h"
#include "support/SampleRecords.h"
#include "support/ScriptedPeer.h"

// A body with this result code and these records behind it.
inline std::string bodyOf(int nCode, Records records) {
    records.insert(records.begin(), recordsOf(with(&EtResult::setCode, nCode)).front());
    return bodyOf(records);
}

// Answers every request with the body of the moment, under the id that the catalogue expects.
// Logins and keep-alives are let through and not written down.
class LoggedInDevice {
public:
    LoggedInDevice() {
        EXPECT_EQ(FleetKit::Login(m_peer.getDeviceInfo(), m_hSession),
                  fleetkit::ErrorCode::Success);
    }

    const long& handle() const { return m_hSession; }

    void answerWith(const std::string& strBody) {
        const std::lock_guard guard(m_mutex);
        m_strBody = strBody;
    }

    std::vector<PeerRequest> takeRequests() {
        const std::lock_guard guard(m_mutex);
        return std::exchange(m_vecRequests, {});
    }

private:
    std::string answerTo(const PeerRequest& request) {
        using namespace fleetkit;
        const std::uint32_t nCommand = request.m_head.getCommandID();
        std::string strBody = peerResult(0, "<SessionId SessionId=\"77\" />");
        if (nCommand != CommandId::Login && nCommand != CommandId::keepAlive) {
            const std::lock_guard guard(m_mutex);
            m_vecRequests.push_back(request);
            strBody = m_strBody;
        }
        return peerAnswer(request, findCommand(nCommand)->nResponseId, strBody);
    }

    std::mutex m_mutex;
    std::string m_strBody = peerResult(0);
    std::vector<PeerRequest> m_vecRequests;
    ScriptedPeer m_peer{answerEach([this](const auto& request) { return answerTo(request); })};
    long m_hSession = 0;
};
