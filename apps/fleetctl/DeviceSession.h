// DeviceSession: a login for the time of its life.
#pragma once

#include <fleetkit/Product/Technic/InetAddr.h>

#include <string>

// The address that HOST:PORT names. An IPv6 address stands in brackets: [::1]:30001. UsageError for
// another form. A host name without an address leaves the IP empty.
InetAddr parseDeviceAddress(const std::string& strText);

// The time is that of an exchange, 0 for the library's own limits.
class DeviceSession {
public:
    DeviceSession(const InetAddr& address, const std::string& strUser,
                  const std::string& strPassword, int nTimeoutMs);
    ~DeviceSession();
    DeviceSession(const DeviceSession&) = delete;
    DeviceSession& operator=(const DeviceSession&) = delete;

    // The result of the login.
    int getCode() const noexcept { return m_nCode; }
    const long& getHandle() const noexcept { return m_nHandle; }

private:
    long m_nHandle = 0;  // in front of the result: the login that gives it writes the handle
    int m_nCode;
};
