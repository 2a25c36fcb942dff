// Accepting connections and ending them.
#include "virtual-device/DeviceServer.h"

#include <algorithm>
#include <chrono>

#include "virtual-device/DeviceConnection.h"
#include "virtual-device/MulticastListener.h"

namespace {

// How long accepting rests when the process has run out of descriptors.
constexpr std::chrono::milliseconds RetryDelay(100);

asio::ip::tcp::endpoint endpointOf(const DeviceOptions& options) {
    return {asio::ip::make_address(options.strBindAddress), options.nPort};
}

}  // namespace

DeviceServer::DeviceServer(asio::io_context& context, DeviceOptions options)
    : m_objContext(context), m_objAcceptor(context, endpointOf(options)), m_objRetry(context) {
    options.nPort = m_objAcceptor.local_endpoint().port();
    m_pobjCore = std::make_shared<DeviceCore>(std::move(options));
}

DeviceServer::~DeviceServer() = default;

void DeviceServer::start() {
    if (m_pobjCore->getOptions().bMulticast) {
        m_pobjMulticast = std::make_shared<MulticastListener>(m_objContext, m_pobjCore);
        m_pobjMulticast->start();
    }
    accept();
}

void DeviceServer::close() {
    asio::error_code objIgnored;
    m_objAcceptor.close(objIgnored);
    m_objRetry.cancel();
    if (m_pobjMulticast) {
        m_pobjMulticast->close();
        m_pobjMulticast.reset();
    }
    dropConnections();
}

std::size_t DeviceServer::sessionCount() const {
    return static_cast<std::size_t>(
        std::count_if(m_setConnections.begin(), m_setConnections.end(),
                      [](const auto& pobjOne) { return pobjOne->getSession() != 0; }));
}

void DeviceServer::dropConnections() {
    const auto setConnections = m_setConnections;
    for (const auto& pobjConnection : setConnections) {
        pobjConnection->close();
    }
}

void DeviceServer::dropSessions() {
    for (const auto& pobjConnection : m_setConnections) {
        pobjConnection->dropSession();
    }
}

void DeviceServer::accept() {
    m_objAcceptor.async_accept([this, pobjSelf = shared_from_this()](
                                   asio::error_code nError, asio::ip::tcp::socket objSocket) {
        if (!m_objAcceptor.is_open()) {
            return;
        }
        if (nError) {
            acceptLater();
            return;
        }
        accept();
        serve(std::move(objSocket));
    });
}

void DeviceServer::serve(asio::ip::tcp::socket objSocket) {
    const auto pobjSelf = shared_from_this();
    DeviceConnection::Owner objOwner;
    objOwner.onClosed = [pobjSelf](const std::shared_ptr<DeviceConnection>& pobjConnection) {
        pobjSelf->m_setConnections.erase(pobjConnection);
    };
    objOwner.onRestart = [pobjSelf] { pobjSelf->dropConnections(); };
    const auto pobjConnection =
        std::make_shared<DeviceConnection>(std::move(objSocket), m_pobjCore, std::move(objOwner));
    m_setConnections.insert(pobjConnection);
    pobjConnection->start();
}

void DeviceServer::acceptLater() {
    m_objRetry.expires_after(RetryDelay);
    m_objRetry.async_wait([this, pobjSelf = shared_from_this()](asio::error_code nError) {
        if (!nError) {
            accept();
        }
    });
}
