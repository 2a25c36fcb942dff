// What each device operation asks of the device.
#pragma once

#include <string>
#include <vector>

#include "device/BaseController.h"
#include "domain/AVStreamParam.h"
#include "domain/ChannelId.h"
#include "domain/ChannelInfo.h"
#include "domain/HostNetwork.h"
#include "domain/OSDUserParam.h"
#include "domain/TimeZoneAbility.h"
#include "domain/TimeZoneParam.h"
#include "session/SessionCommands.h"

// Knows which command serves an operation, which records its request holds, in which order, and
// which record of the reply is the answer; knows nothing of connections.
//
// Each operation is one exchange and gives its code; what it fills is left alone on any other than
// Success. The first argument is the channel that the request names, -1 for the whole device.
class DeviceControllerImpl : public BaseController {
public:
    // The plain operations: one record there or back, or none.
    template <class Record>
    int get(int nChannelId, std::uint32_t nCommandId, Record& record) {
        return sendGet(m_pSession, nCommandId, record, withId<ChannelId>(nChannelId));
    }
    template <class Record>
    int set(int nChannelId, std::uint32_t nCommandId, const Record& record) {
        return sendSet(m_pSession, nCommandId, withId<ChannelId>(nChannelId), record);
    }
    int act(int nChannelId, std::uint32_t nCommandId);

    int reset(int nChannelId, const std::vector<int>& vecHoldTypes);
    // CipherFailed, and nothing is sent, when a password cannot be enciphered.
    int setPassword(int nChannelId, const std::string& strOld, const std::string& strNew);
    int setHostNetwork(int nChannelId, const HostNetwork& network);
    int execute(int nChannelId, const std::string& strCommand);

    int getTimeZoneAbility(int nChannelId, int nLanguageId, TimeZoneAbility& ability);
    int getTimeZoneDefault(int nChannelId, int nTimeZoneId, TimeZoneParam& timeZone);

    int getAllAVStreams(int nChannelId, std::vector<AVStreamParam>& vecStreams);
    int getAVStream(int nChannelId, int nStreamId, AVStreamParam& stream);  // EmptyStreamList
    int setAllAVStreams(int nChannelId, const std::vector<AVStreamParam>& vecStreams);
    // The number of the channel stands in the place of the stream's as well.
    int setAVStream(int nChannelId, const AVStreamParam& stream);

    int setOSDUserParam(int nChannelId, const OSDUserParam& param);
    int setAllOSDUserParams(int nChannelId, const std::vector<OSDUserParam>& vecParams);
    int getAllOSDUserParams(int nChannelId, std::vector<OSDUserParam>& vecParams);

    int getAllChannels(int nChannelId, std::vector<ChannelInfo>& vecChannels);
    int getChannel(int nChannelId, ChannelInfo& channel);  // EmptyChannelList

private:
    template <class Record, class Id>
    static Record withId(Id id) {
        Record record;
        record.setId(id);
        return record;
    }
};
