// A device that this process is logged in to, and that shows what it was asked.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "device/FleetKit.h"
#include "domain/EtResult.h"
#include "domainxml/XmlCursor.h"
#include "protocol/CommandCatalogue.h"
#include "protocol/ICommandBodyParser.h"
#include "session/SessionCommands.h"
#include "support/ScriptedPeer.h"
#include "support/WireBytes.h"

// A body with this result code and these records behind it.
inline std::string bodyOf(int nCode, Records records) {
    EtResult result;
    result.setCode(nCode);
    records.insert(records.begin(), copyOf(result));
    CommandBuffer buffer;
    EXPECT_TRUE(createBodyParser(10000)->createCommandBody(records, buffer));
    return bytesOf(buffer);
}

// The records of a body by their tags, in order, with the number or flag that some of them are
// about, and the length of a list: "ChannelId=-1 AVStreamParamList[2]".
inline std::string describeBody(const std::string& strBody) {
    const XmlDocument document = XmlDocument::parse(strBody.c_str());
    std::string strText;
    for (const XmlCursor& record : document.root().children()) {
        const std::string strTag = record.name();
        strText += (strText.empty() ? "" : " ") + strTag;
        for (const char* szAttribute : {"Id", "Value", "Bool"}) {
            if (const char* szValue = record.attribute(szAttribute)) {
                strText += std::string("=") + szValue;
            }
        }
        if (strTag.size() > 4 && strTag.compare(strTag.size() - 4, 4, "List") == 0) {
            strText += "[" + std::to_string(record.children().size()) + "]";
        }
    }
    return strText;
}

// Answers every request with the body of the moment, under the id that the catalogue expects.
// Logins, logouts and keep-alives are let through and not written down.
class LoggedInDevice {
public:
    LoggedInDevice() {
        EXPECT_EQ(FleetKit::Login(m_objPeer.getDeviceInfo(), m_hSession), ErrorCode::Success);
    }

    const long& handle() const { return m_hSession; }
    const ScriptedPeer& peer() const { return m_objPeer; }

    void answerWith(const std::string& strBody) {
        const std::lock_guard guard(m_objMutex);
        m_strBody = strBody;
    }

    // From the next request on the device hangs up.
    void hangUp() { answerWith(""); }

    std::vector<PeerRequest> takeRequests() {
        const std::lock_guard guard(m_objMutex);
        return std::exchange(m_vecRequests, {});
    }

private:
    static constexpr std::uint32_t LoginCommand = 11001;
    static constexpr std::uint32_t LogoutCommand = 11003;
    static constexpr std::uint32_t KeepAliveCommand = 11007;

    void serve(PeerLink& link) {
        PeerRequest request;
        while (link.read(request)) {
            const std::string strBody = bodyFor(request);
            if (strBody.empty()) {
                return link.close();
            }
            const std::uint32_t nReply = findCommand(request.m_objHead.getCommandID())->nResponseId;
            link.send(peerAnswer(request, nReply, strBody));
        }
    }

    std::string bodyFor(const PeerRequest& request) {
        switch (request.m_objHead.getCommandID()) {
            case LoginCommand:
            case LogoutCommand:
            case KeepAliveCommand:
                return peerResult(0, "<SessionId SessionId=\"77\" />");
            default:
                break;
        }
        const std::lock_guard guard(m_objMutex);
        m_vecRequests.push_back(request);
        return m_strBody;
    }

    std::mutex m_objMutex;
    std::string m_strBody = peerResult(0);
    std::vector<PeerRequest> m_vecRequests;
    ScriptedPeer m_objPeer{[this](PeerLink& link) { serve(link); }};
    long m_hSession = 0;
};
