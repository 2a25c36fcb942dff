// The other end of a session: a device on 127.0.0.1 that does what a test tells it to.
#pragma once

#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <thread>

#include "protocol/SDKCommandHeadInfo.h"
#include "support/LoginData.h"

struct PeerRequest {
    SDKCommandHeadInfo m_head;
    std::string m_strBody;
};

// The bytes of a message: its head, with type and payload length set here, and its body.
std::string peerMessage(SDKCommandHeadInfo head, const std::string& strBody,
                        std::uint16_t nProtocolType = 1);

// A body with these elements in it.
std::string peerBody(const std::string& strElements);

// A body with the result code, and other elements behind it.
std::string peerResult(int nCode, const std::string& strElements = "");

// The message that answers a request with its own sequence and session.
std::string peerAnswer(const PeerRequest& request, std::uint32_t nCommandID,
                       const std::string& strBody);

// One accepted connection, for the peer's thread.
class PeerLink {
public:
    explicit PeerLink(int nSocket) : m_nSocket(nSocket) {}

    // Waits for a whole request. False when the connection has ended, and on bytes that are none.
    bool read(PeerRequest& request);
    void send(const std::string& strBytes);

private:
    bool readBytes(void* pInto, std::size_t nLength);

    const int m_nSocket;
};

// Listens on a free port and runs the script on a thread of its own for each connection, one after
// the other. A script waits for nothing but requests and what the test itself opens; in the end
// reads fail, so that scripts return.
class ScriptedPeer {
public:
    using Script = std::function<void(PeerLink&)>;

    explicit ScriptedPeer(Script script);
    ~ScriptedPeer();
    ScriptedPeer(const ScriptedPeer&) = delete;
    ScriptedPeer& operator=(const ScriptedPeer&) = delete;

    // How to log in to this device: user "admin", password "secret".
    DeviceInfoEx getDeviceInfo() const { return loginData(m_nPort, "secret"); }

private:
    void serve();

    const Script m_script;
    int m_nListener = -1;
    std::uint16_t m_nPort = 0;
    std::mutex m_mutex;
    int m_nLink = -1;        // guarded by m_mutex
    bool m_bEnding = false;  // guarded by m_mutex
    std::thread m_thread;
};

// A script that answers every request with the bytes that are made for it, none at all among them.
ScriptedPeer::Script answerEach(std::function<std::string(const PeerRequest&)> answer);
