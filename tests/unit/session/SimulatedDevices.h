// Any number of devices on a clock of their own: what they send arrives at simulated moments, and
// waiting for it takes no real time.
#pragma once

#include <algorithm>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <limits>
#include <map>
#include <memory>
#include <mutex>
#include <span>
#include <stop_token>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "Product/Technic/ErrorCode.h"
#include "Product/Technic/platform/Clock.h"
#include "session/SDKSession.h"
#include "session/UDPTransfer.h"
#include "support/ScriptedPeer.h"
#include "support/WireBytes.h"

// What a device sends upon a request: so many milliseconds later, these bytes. None of them are the
// end of the connection.
using Arrivals = std::multimap<std::uint64_t, std::string>;
using Behaviour = std::function<Arrivals(const PeerRequest&)>;

class SimulatedDevices : public IClock {
public:
    explicit SimulatedDevices(std::uint64_t nStartMs = 0) : m_nNowMs(nStartMs) {}

    SafePointer<SDKSession> add(Behaviour behaviour) {
        auto session = wrapSafe(std::make_unique<SDKSession>());
        session->setTransfer(wrapSafe<ITransfer>(
            std::make_unique<Connection>(*this, FirstHandle + m_nConnections++, behaviour)));
        return session;
    }

    // From here on the time stands still but for this: it runs to that moment, and on return
    // whoever was at work waits again.
    void halt() { m_nHaltMs = m_nNowMs; }
    void runUntil(std::uint64_t nMs) {
        std::unique_lock lock(m_mutex);
        m_nHaltMs = nMs;
        m_changed.notify_all();
        m_changed.wait(lock, [&] { return m_nNowMs >= m_nHaltMs && m_bHeld; });
    }

    std::uint64_t monotonicMs() override {
        const std::lock_guard guard(m_mutex);
        return m_nNowMs;
    }

    std::time_t calendarTime() override { return 0; }

    void wait(std::uint32_t nMs, std::span<SocketApi::Wait> sockets,
              const std::stop_token& stop) override {
        if (sockets.empty() && !stop.stop_possible()) {
            std::this_thread::yield();  // for the end of another thread
            return;
        }
        std::unique_lock lock(m_mutex);
        if (markReady(sockets)) {
            return;
        }
        m_bHeld = m_nNowMs >= m_nHaltMs;
        m_changed.notify_all();
        m_changed.wait(lock, stop, [&] { return m_nNowMs < m_nHaltMs; });
        m_bHeld = false;
        std::uint64_t nUntil = std::min(m_nNowMs + nMs, m_nHaltMs);
        for (const SocketApi::Wait& socket : sockets) {
            const Arrivals& arrivals = m_arrivals[socket.nHandle];
            nUntil = arrivals.empty() ? nUntil : std::min(nUntil, arrivals.begin()->first);
        }
        m_nNowMs = nUntil;
        markReady(sockets);
    }

private:
    static constexpr int FirstHandle = 1 << 20;  // above those of the process

    class Connection : public UDPTransfer {
    public:
        Connection(SimulatedDevices& devices, int nHandle, Behaviour behaviour)
            : UDPTransfer(1), m_devices(devices), m_behaviour(std::move(behaviour)) {
            m_pSocket = std::make_unique<Socket>(1, Socket::Stream);
            m_pSocket->setHandle(nHandle);
        }

        int sendSome(const CommandBuffer& buffer, const InetAddr&, std::uint32_t& nSent) override {
            PeerRequest request;
            if (!m_pSocket) {
                return fleetkit::ErrorCode::NoTransport;
            }
            decodeCommandHead(buffer.data(), buffer.getLength(), request.m_head);
            request.m_strBody = bytesOf(buffer).substr(SDKCommandHeadInfo::WireLength);
            nSent = buffer.getLength();
            const Arrivals arrivals = m_behaviour(request);
            const std::lock_guard guard(m_devices.m_mutex);
            for (const auto& [nAfterMs, strBytes] : arrivals) {
                mine().emplace(m_devices.m_nNowMs + nAfterMs, strBytes);
            }
            return fleetkit::ErrorCode::Success;
        }

        int recvSome(CommandBuffer& buffer, InetAddr&) override {
            const std::lock_guard guard(m_devices.m_mutex);
            std::string strBytes = bytesOf(buffer);
            while (!mine().empty() && mine().begin()->first <= m_devices.m_nNowMs) {
                if (mine().begin()->second.empty()) {
                    return fleetkit::ErrorCode::ReceiveFailed;
                }
                strBytes += mine().begin()->second;
                mine().erase(mine().begin());
            }
            buffer = payloadOf(strBytes);
            SDKCommandHeadInfo head;
            return decodeCommandHead(buffer.data(), buffer.getLength(), head) &&
                           buffer.getLength() == head.WireLength + head.getPayloadLength()
                       ? fleetkit::ErrorCode::Success
                       : fleetkit::ErrorCode::NothingToRead;
        }

    private:
        Arrivals& mine() { return m_devices.m_arrivals[m_pSocket->getHandle()]; }

        SimulatedDevices& m_devices;
        const Behaviour m_behaviour;
    };

    // Whether something has arrived anywhere.
    bool markReady(std::span<SocketApi::Wait> sockets) {
        bool bAny = false;
        for (SocketApi::Wait& socket : sockets) {
            const Arrivals& arrivals = m_arrivals[socket.nHandle];
            socket.bReady = !arrivals.empty() && arrivals.begin()->first <= m_nNowMs;
            bAny = bAny || socket.bReady;
        }
        return bAny;
    }

    int m_nConnections = 0;
    std::mutex m_mutex;
    std::condition_variable_any m_changed;
    bool m_bHeld = false;
    std::uint64_t m_nHaltMs = std::numeric_limits<std::uint64_t>::max();
    std::uint64_t m_nNowMs;
    std::map<int, Arrivals> m_arrivals;  // still to come, by handle
};

// An answer that comes as a whole.
inline Behaviour answersAfter(std::uint64_t nMs, std::uint32_t nReply, int nCode = 0) {
    return [=](const PeerRequest& request) {
        return Arrivals{{nMs, peerAnswer(request, nReply, peerResult(nCode))}};
    };
}

// Pieces of an answer, one after the other.
inline Arrivals inPieces(const std::string& strAnswer, std::size_t nPiece, std::uint64_t nEachMs) {
    Arrivals arrivals;
    for (std::size_t nAt = 0; nAt < strAnswer.size(); nAt += nPiece) {
        arrivals.emplace((nAt / nPiece + 1) * nEachMs, strAnswer.substr(nAt, nPiece));
    }
    return arrivals;
}
