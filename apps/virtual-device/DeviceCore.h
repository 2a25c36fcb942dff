// The device behind the network: from a request to its answer, over the state.
#pragma once

#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <vector>

#include "virtual-device/Answer.h"
#include "virtual-device/DeviceOptions.h"
#include "virtual-device/DeviceState.h"
#include "virtual-device/Request.h"

// A request that the device got, for tests that look at what was sent.
struct ReceivedCommand {
    std::uint32_t nCommandId = 0;
    std::uint32_t nSessionId = 0;
    std::uint16_t nSequence = 0;
    std::vector<std::string> vecRecords;  // the tags of its first records, in order
};

// Knows no sockets. Belongs to one thread at a time.
class DeviceCore {
public:
    // The port in the options is the one that the device listens on.
    explicit DeviceCore(DeviceOptions options);

    // `nSession` is the session of the connection, 0 without one; login and logout change it.
    // `strPeer` is for the log.
    Answer answer(const Request& request, std::uint32_t& nSession, const std::string& strPeer);

    // The answer to a request that is not even looked at, such as one whose body does not decode.
    Answer refuse(const SDKCommandHeadInfo& head, int nCode, const std::string& strPeer);

    // The answer to a setting of the network that came without a session; nothing when the request
    // is another one or is meant for another device.
    std::optional<Answer> answerMulticast(const Request& request, const std::string& strPeer);

    // A line in the log, if there is one.
    void log(const std::string& strPeer, const std::string& strText) const;

    void misbehave(const Misbehaviour& misbehaviour) { m_vecMisbehaviours.push_back(misbehaviour); }
    void behave() { m_vecMisbehaviours.clear(); }

    const DeviceOptions& getOptions() const { return m_options; }
    const DeviceState& getState() const { return m_state; }
    const std::deque<ReceivedCommand>& getReceived() const { return m_vecReceived; }

private:
    void remember(const Request& request);
    int handle(const Request& request, std::uint32_t& nSession, Answer& answer);
    void spoil(std::uint32_t nCommandId, Answer& answer);

    DeviceOptions m_options;
    DeviceState m_state;
    std::uint32_t m_nLastSession = 1000;
    std::vector<Misbehaviour> m_vecMisbehaviours;
    std::deque<ReceivedCommand> m_vecReceived;  // the last ones
};
