// The plain structures, their bounds above all.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "device/StructConversions.h"
#include "support/SampleRecords.h"

using namespace fleetkit;
using namespace NS_TARN_STRUCT;

namespace {

constexpr int Lowest = std::numeric_limits<int>::min();

// A structure on its own in memory, every byte of it set, so that a sanitizer sees what leaves it.
template <class Structure>
std::unique_ptr<Structure> filledWith(char nByte) {
    auto pStructure = std::make_unique<Structure>();
    std::memset(static_cast<void*>(pStructure.get()), nByte, sizeof(Structure));
    return pStructure;
}

template <class Record, class Structure>
std::vector<Record> read(const Structure& structure) {
    std::vector<Record> vecRecords;
    toRecords(&structure, &vecRecords);
    return vecRecords;
}

template <class Structure, class Record>
std::unique_ptr<Structure> written(const std::vector<Record>& vecRecords) {
    auto pStructure = filledWith<Structure>('x');
    toStructure(&vecRecords, pStructure.get());
    return pStructure;
}

}  // namespace

TEST(StructConversions, KeepEveryField) {
    const std::vector vecStreams{sample<AVStreamParam>(), AVStreamParam()};
    const auto pStreams = written<tagAllAVStreamParam>(vecStreams);
    EXPECT_TRUE(read<AVStreamParam>(*pStreams) == vecStreams);
    EXPECT_EQ(pStreams->Streams[0].VideoHeight, vecStreams[0].getVideoHeight());
    EXPECT_EQ(pStreams->Streams[0].IFrameIntervalUnit, vecStreams[0].getIFrameIntervalUnit());
    const std::vector vecTexts{sample<OSDUserParam>()};
    const auto pTexts = written<tagOSDUserParamList>(vecTexts);
    EXPECT_TRUE(read<OSDUserParam>(*pTexts) == vecTexts);
    EXPECT_EQ(pTexts->Params[0].OSDFontInverseColor.B,
              vecTexts[0].getOSDGlobalParam().getOSDFontInverseColor().getB());
}

TEST(StructConversions, ReadAtMostTheCapacityAndNothingForACountBelowOne) {
    const auto pStreams = filledWith<tagAllAVStreamParam>('x');
    const auto pParams = filledWith<tagOSDUserParamList>('x');  // all counts huge, no text ends
    const auto vecStreams = read<AVStreamParam>(*pStreams);
    ASSERT_EQ(vecStreams.size(), std::size_t{MaxAVStreams});
    EXPECT_EQ(vecStreams.back().getStreamName(), std::string(36, 'x'));
    const auto vecParams = read<OSDUserParam>(*pParams);
    ASSERT_EQ(vecParams.size(), std::size_t{MaxOSDUserParams});
    const auto& vecCanvases = vecParams.back().getCanvasProperList();
    ASSERT_EQ(vecCanvases.size(), 5U);
    ASSERT_EQ(vecCanvases.back().getOSDInfoList().size(), 5U);
    EXPECT_EQ(vecCanvases.back().getOSDInfoList().back().getInfo(), std::string(256, 'x'));
    for (const int nCount : {0, -1, Lowest}) {
        pStreams->Count = pParams->Params[0].CanvasCount = nCount;
        EXPECT_TRUE(read<AVStreamParam>(*pStreams).empty());
        EXPECT_TRUE(read<OSDUserParam>(*pParams)[0].getCanvasProperList().empty());
    }
}

TEST(StructConversions, WriteWhatFitsAndLeaveWhatStandsBehindTheLastElement) {
    const std::string strLong(300, 'n');
    const auto stream = with(&AVStreamParam::setStreamName, strLong);
    const auto pStreams = written<tagAllAVStreamParam>(std::vector(MaxAVStreams + 1, stream));
    EXPECT_EQ(pStreams->Count, MaxAVStreams);
    EXPECT_EQ(pStreams->Streams[MaxAVStreams - 1].StreamName, std::string(35, 'n'));
    const auto pChannels = written<tagAllChannelInfo>(std::vector<ChannelInfo>(MaxChannels + 1));
    EXPECT_EQ(pChannels->Count, MaxChannels);
    const auto info = with(&OSDInfo::setInfo, strLong);
    const auto canvas = with(&CanvasProper::setOSDInfoList, std::vector(6, info));
    const auto text = with(&OSDUserParam::setCanvasProperList, std::vector(6, canvas));
    const auto pParams = written<tagOSDUserParamList>(std::vector(MaxOSDUserParams + 1, text));
    EXPECT_EQ(pParams->Count, MaxOSDUserParams);
    const tagOSDUserParam& last = pParams->Params[MaxOSDUserParams - 1];
    EXPECT_EQ(last.CanvasCount, 5);
    EXPECT_EQ(last.Canvases[4].OSDInfoCount, 5);
    EXPECT_EQ(last.Canvases[4].OSDInfos[4].Info, std::string(255, 'n'));
    const auto pOne = written<tagAllAVStreamParam>(std::vector<AVStreamParam>(1));
    EXPECT_STREQ(pOne->Streams[0].StreamName, "");
    EXPECT_EQ(pOne->Streams[1].StreamName[0], 'x');
}

TEST(StructConversions, CutTextsBetweenCharacters) {
    const std::pair<std::string, std::size_t> arrCases[] = {
        {"\u00e4", 0}, {"\u00e4", 1},     {"\u20ac", 0},       {"\u20ac", 1},
        {"\u20ac", 2}, {"\U0001F4F7", 3}, {"\x80\x80\x80", 2},
    };
    for (const auto& [strCharacter, nBytesThatFit] : arrCases) {
        const std::string strWhole(35 - nBytesThatFit, 'n');
        const bool bIsCharacter = strCharacter.front() != '\x80';
        const auto stream =
            with(&AVStreamParam::setStreamName, strWhole + strCharacter + strCharacter);
        const auto pStreams = written<tagAllAVStreamParam>(std::vector{stream});
        EXPECT_EQ(pStreams->Streams[0].StreamName,
                  bIsCharacter ? strWhole : strWhole + strCharacter.substr(0, nBytesThatFit));
    }
}

TEST(StructConversions, EndAChannelsTextsOnlyWhereThereIsRoom) {
    for (const std::size_t nLength : {31U, 48U, 300U}) {
        auto channel =
            with(&ChannelInfo::setDeviceType, 103, &ChannelInfo::setChannelName,
                 std::string(nLength, 'n'), &ChannelInfo::setDeviceID, std::string(nLength, 'd'));
        const auto pChannels = written<tagAllChannelInfo>(std::vector{channel});
        const tagChannelInfo& first = pChannels->Channels[0];
        EXPECT_EQ(strnlen(first.ChannelName, 48), std::min<std::size_t>(nLength, 48));
        EXPECT_EQ(strnlen(first.DeviceID, 32), std::min<std::size_t>(nLength, 32));
        channel.setChannelName(std::string(std::min<std::size_t>(nLength, 48), 'n'));
        channel.setDeviceID(std::string(std::min<std::size_t>(nLength, 32), 'd'));
        EXPECT_TRUE(read<ChannelInfo>(*pChannels) == std::vector{channel});
    }
}

TEST(StructConversions, DoNothingWithNullPointers) {
    std::vector<AVStreamParam> vecStreams(1);
    const auto pStreams = filledWith<tagAllAVStreamParam>(0);
    toRecords(static_cast<const tagAllAVStreamParam*>(nullptr), &vecStreams);
    toRecords(pStreams.get(), nullptr);
    toStructure(&vecStreams, nullptr);
    toStructure(nullptr, pStreams.get());
    EXPECT_EQ(vecStreams.size(), 1U);
    EXPECT_EQ(pStreams->Count, 0);
}
