// Accepting connections and ending them.
#include "virtual-device/DeviceServer.h"

#include <algorithm>
#include <chrono>
#include <stdexcept>
#include <string>
#include <system_error>

#include "virtual-device/DeviceConnection.h"
#include "virtual-device/MulticastListener.h"

namespace {

// How long accepting rests when the process has run out of descriptors.
constexpr std::chrono::milliseconds RetryDelay(100);

asio::ip::tcp::acceptor listenOn(asio::io_context& context, const DeviceOptions& options) try {
    return {context, {asio::ip::make_address(options.strBindAddress), options.nPort}};
} catch (const std::system_error& error) {
    const bool bInUse = error.code() == asio::error::address_in_use;
    throw std::runtime_error("port " + std::to_string(options.nPort) + " of " +
                             options.strBindAddress +
                             (bInUse ? " is in use" : ": " + error.code().message()));
}

}  // namespace

DeviceServer::DeviceServer(asio::io_context& context, DeviceOptions options)
    : m_context(context), m_acceptor(listenOn(context, options)), m_retry(context) {
    options.nPort = m_acceptor.local_endpoint().port();
    m_pCore = std::make_shared<DeviceCore>(std::move(options));
}

DeviceServer::~DeviceServer() = default;

void DeviceServer::start() {
    if (m_pCore->getOptions().bMulticast) {
        m_pMulticast = std::make_shared<MulticastListener>(m_context, m_pCore);
        m_pMulticast->start();
    }
    accept();
}

void DeviceServer::close() {
    asio::error_code ignored;
    m_acceptor.close(ignored);
    m_retry.cancel();
    if (m_pMulticast) {
        m_pMulticast->close();
        m_pMulticast.reset();
    }
    dropConnections();
}

std::size_t DeviceServer::sessionCount() const {
    return static_cast<std::size_t>(
        std::count_if(m_vecConnections.begin(), m_vecConnections.end(),
                      [](const auto& pOne) { return pOne->getSession() != 0; }));
}

void DeviceServer::dropConnections() {
    const auto vecConnections = m_vecConnections;
    for (const auto& pConnection : vecConnections) {
        pConnection->close();
    }
}

void DeviceServer::dropSessions() {
    for (const auto& pConnection : m_vecConnections) {
        pConnection->dropSession();
    }
}

void DeviceServer::accept() {
    m_acceptor.async_accept(
        [this, pSelf = shared_from_this()](asio::error_code nError, asio::ip::tcp::socket socket) {
            if (!m_acceptor.is_open()) {
                return;
            }
            if (nError) {
                acceptLater();
                return;
            }
            accept();
            serve(std::move(socket));
        });
}

void DeviceServer::serve(asio::ip::tcp::socket socket) {
    const auto pSelf = shared_from_this();
    DeviceConnection::Owner owner;
    owner.onClosed = [pSelf](const std::shared_ptr<DeviceConnection>& pConnection) {
        std::erase(pSelf->m_vecConnections, pConnection);
    };
    owner.onRestart = [pSelf] { pSelf->dropConnections(); };
    const auto pConnection =
        std::make_shared<DeviceConnection>(std::move(socket), m_pCore, std::move(owner));
    const bool bPlace = makePlace();
    m_vecConnections.push_back(pConnection);
    if (bPlace) {
        pConnection->start();
    } else {
        pConnection->startRefusing();
    }
}

// Whoever is not logged in gives way, so that idle connections keep nobody out.
bool DeviceServer::makePlace() {
    const std::size_t nMost = m_pCore->getOptions().nMaxConnections;
    const auto it = std::find_if(m_vecConnections.begin(), m_vecConnections.end(),
                                 [](const auto& pOne) { return pOne->getSession() == 0; });
    if (m_vecConnections.size() >= nMost && it != m_vecConnections.end()) {
        const auto pOldest = *it;
        pOldest->close();
    }
    return sessionCount() < nMost;
}

void DeviceServer::acceptLater() {
    m_retry.expires_after(RetryDelay);
    m_retry.async_wait([this, pSelf = shared_from_this()](asio::error_code nError) {
        if (!nError) {
            accept();
        }
    });
}
