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

// Answers every request with the body of the moment, under the id that the catalogue expects; with
// an empty one it hangs up. Logins, logouts and keep-alives are let through and not written down.
class LoggedInDevice {
public:
    LoggedInDevice() {
        EXPECT_EQ(FleetKit::Login(m_peer.getDeviceInfo(), m_hSession),
                  fleetkit::ErrorCode::Success);
    }

    const long& handle() const { return m_hSession; }
    const ScriptedPeer& peer() const { return m_peer; }

    void answerWith(const std::string& strBody) {
        const std::lock_guard guard(m_mutex);
        m_strBody = strBody;
    }

    std::vector<PeerRequest> takeRequests() {
        const std::lock_guard guard(m_mutex);
        return std::exchange(m_vecRequests, {});
    }

private:
    void serve(PeerLink& link) {
        PeerRequest request;
        while (link.read(request)) {
            const std::string strBody = bodyFor(request);
            if (strBody.empty()) {
                return link.close();
            }
            const std::uint32_t nReply =
                fleetkit::findCommand(request.m_head.getCommandID())->nResponseId;
            link.send(peerAnswer(request, nReply, strBody));
        }
    }

    std::string bodyFor(const PeerRequest& request) {
        using namespace fleetkit;
        const std::uint32_t nCommand = request.m_head.getCommandID();
        if (nCommand == CommandId::Login || nCommand == CommandId::Logout ||
            nCommand == CommandId::keepAlive) {
            return peerResult(0, "<SessionId SessionId=\"77\" />");
        }
        const std::lock_guard guard(m_mutex);
        m_vecRequests.push_back(request);
        return m_strBody;
    }

    std::mutex m_mutex;
    std::string m_strBody = peerResult(0);
    std::vector<PeerRequest> m_vecRequests;
    ScriptedPeer m_peer{[this](PeerLink& link) { serve(link); }};
    long m_hSession = 0;
};
