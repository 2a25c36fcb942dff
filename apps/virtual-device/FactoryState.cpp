// What a virtual device is before anybody sets it: the records of factory/*.xml, as they look on
// the wire, with the few values that depend on the options in braces.
#include <map>
#include <stdexcept>
#include <string>

#include "domain/VideoAbility.h"
#include "domainxml/XmlCursor.h"
#include "protocol/SDKNormalXmlBodyParser.h"
#include "virtual-device/DeviceState.h"
#include "virtual-device/FactoryText.h"
#include "virtual-device/Request.h"

namespace {

struct StreamSize {
    const char* szName;
    int nWidth;
    int nHeight;
    int nBitRate;
};

// The last one serves all further streams.
constexpr StreamSize StreamSizes[] = {
    {"main", 1920, 1080, 4096},
    {"sub", 704, 576, 1024},
    {"third", 640, 480, 512},
    {"further", 352, 288, 256},
};

using Values = std::map<std::string, std::string>;

// Names in braces become their values; braces in a value stay.
std::string filled(const std::string& strText, const Values& mapValues) {
    std::string strFilled;
    std::size_t nDone = 0;
    for (std::size_t nOpen = strText.find('{'); nOpen != std::string::npos;
         nOpen = strText.find('{', nDone)) {
        const std::size_t nClose = strText.find('}', nOpen);
        strFilled.append(strText, nDone, nOpen - nDone);
        strFilled += mapValues.at(strText.substr(nOpen + 1, nClose - nOpen - 1));
        nDone = nClose + 1;
    }
    return strFilled.append(strText, nDone);
}

DomainList recordsOf(const char* szName, const Values& mapValues) {
    const std::string strDocument = filled(factoryText(szName), mapValues);
    CommandBuffer body;
    DomainList vecRecords;
    const bool bRead = body.allocate(strDocument.size() + 1) &&
                       body.append(reinterpret_cast<const std::uint8_t*>(strDocument.data()),
                                   static_cast<std::uint32_t>(strDocument.size())) &&
                       SDKNormalXmlBodyParser().parseCommandBody(body, vecRecords);
    if (!bRead) {
        throw std::logic_error("the factory state of the virtual device does not parse");
    }
    return vecRecords;
}

template <class T>
T single(const DomainList& vecRecords) {
    const T* pRecord = findRecord<T>(vecRecords);
    if (!pRecord) {
        throw std::logic_error("the factory state of the virtual device lacks a record");
    }
    return *pRecord;
}

template <class T>
std::vector<T> listOf(const DomainList& vecRecords) {
    const std::vector<T>* pList = findList<T>(vecRecords);
    if (!pList) {
        throw std::logic_error("the factory state of the virtual device lacks a list");
    }
    return *pList;
}

Values deviceValues(const DeviceOptions& options) {
    const bool bIsIPv6 = options.strBindAddress.find(':') != std::string::npos;
    return {{"id", escapedXml(options.strDeviceId)},
            {"ip", escapedXml(options.strBindAddress)},
            {"ip-version", bIsIPv6 ? "2" : "1"},
            {"port", std::to_string(options.nPort)},
            {"channels", std::to_string(options.nChannels)}};
}

Values streamValues(int nChannel, int nStream) {
    const std::size_t nIndex =
        std::min(static_cast<std::size_t>(nStream), std::size(StreamSizes)) - 1;
    const StreamSize& size = StreamSizes[nIndex];
    return {{"channel", std::to_string(nChannel)},
            {"stream", std::to_string(nStream)},
            {"stream-name", size.szName},
            {"width", std::to_string(size.nWidth)},
            {"height", std::to_string(size.nHeight)},
            {"bit-rate", std::to_string(size.nBitRate)}};
}

// Keeps what stands in a text once; a list is for its own place.
void keepSingles(const DomainList& vecRecords, DeviceState& state) {
    for (const auto& record : vecRecords) {
        if (record->getDomainId() != ContainerDomainId) {
            state.records.put(*record);
        }
    }
}

void addDevice(const DeviceOptions& options, DeviceState& state) {
    const bool bIsRecorder = options.nKind == DeviceKind::NVR;
    keepSingles(recordsOf(bIsRecorder ? "recorder" : "camera", deviceValues(options)), state);
    const DomainList vecRecords = recordsOf("device", deviceValues(options));
    keepSingles(vecRecords, state);
    state.vecHostNetworks = listOf<HostNetwork>(vecRecords);
}

void addTimeZones(DeviceState& state) {
    const DomainList vecRecords = recordsOf("time-zones", {});
    keepSingles(vecRecords, state);
    state.vecTimeZoneDefaults = listOf<TimeZoneParam>(vecRecords);
    state.records.put(state.vecTimeZoneDefaults.front());
    state.vecTimeZones = listOf<TimeZoneAbility>(vecRecords);
}

// Adds a stream; gives what the channel can do with it.
BaseStream addStream(int nChannel, int nStream, DeviceState& state) {
    const DomainList vecRecords = recordsOf("stream", streamValues(nChannel, nStream));
    state.vecStreams.push_back(single<AVStreamParam>(vecRecords));
    return single<BaseStream>(vecRecords);
}

// Adds a channel; gives what it can do with its video.
VideoAbilityParam addChannel(const DeviceOptions& options, int nChannel, DeviceState& state) {
    Values mapValues = deviceValues(options);
    mapValues.emplace("channel", std::to_string(nChannel));
    const DomainList vecRecords = recordsOf("channel", mapValues);
    state.vecChannels.push_back(single<ChannelInfo>(vecRecords));
    state.vecOSD.push_back(single<OSDUserParam>(vecRecords));
    std::vector<BaseStream> vecStreams;
    for (int nStream = 1; nStream <= options.nStreams; ++nStream) {
        vecStreams.push_back(addStream(nChannel, nStream, state));
    }
    VideoAbilityParam video = single<VideoAbility>(vecRecords).getVideoAbilityParamList().front();
    video.setBaseStreamList(vecStreams);
    return video;
}

}  // namespace

DeviceState factoryState(const DeviceOptions& options) {
    DeviceState state;
    state.strPassword = options.strPassword;
    addDevice(options, state);
    addTimeZones(state);
    std::vector<VideoAbilityParam> vecVideo;
    for (int nChannel = 1; nChannel <= options.nChannels; ++nChannel) {
        vecVideo.push_back(addChannel(options, nChannel, state));
    }
    VideoAbility video;
    video.setVideoAbilityParamList(vecVideo);
    state.records.put(video);
    return state;
}
