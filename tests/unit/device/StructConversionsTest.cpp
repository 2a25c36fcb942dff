// The plain structures, their bounds above all.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "device/StructConversions.h"

using namespace NS_TARN_STRUCT;

namespace {

constexpr int Highest = std::numeric_limits<int>::max();
constexpr int Lowest = std::numeric_limits<int>::min();

// A structure on its own in memory, every byte of it set, so that a sanitizer sees what leaves it.
template <class Structure>
std::unique_ptr<Structure> filledWith(unsigned char nByte) {
    auto pStructure = std::make_unique<Structure>();
    std::memset(pStructure.get(), nByte, sizeof(Structure));
    return pStructure;
}

template <class Record, class Structure>
std::vector<Record> recordsOf(const Structure& structure) {
    std::vector<Record> vecRecords;
    toRecords(&structure, &vecRecords);
    return vecRecords;
}

AVStreamParam namedStream(const std::string& strName) {
    AVStreamParam stream;
    stream.setStreamName(strName);
    return stream;
}

OSDUserParam textOf(std::size_t nCanvases, std::size_t nInfos, const std::string& strInfo) {
    OSDInfo info;
    info.setInfo(strInfo);
    info.setEnableFlag(true);
    CanvasProper canvas;
    canvas.setOSDInfoList(std::vector<OSDInfo>(nInfos, info));
    OSDUserParam param;
    param.setCanvasProperList(std::vector<CanvasProper>(nCanvases, canvas));
    return param;
}

}  // namespace

TEST(StructConversions, KeepEveryFieldOfAStream) {
    auto pFrom = std::make_unique<tagAllAVStreamParam>();
    pFrom->Count = 2;
    pFrom->Streams[0] = {1, 2, "main", 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, Highest};
    pFrom->Streams[1] = {Lowest, Highest, "", -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1};
    const auto vecStreams = recordsOf<AVStreamParam>(*pFrom);
    ASSERT_EQ(vecStreams.size(), 2U);
    EXPECT_EQ(vecStreams[0].getVideoHeight(), 3);
    EXPECT_EQ(vecStreams[0].getIFrameIntervalUnit(), 10);
    auto pTo = std::make_unique<tagAllAVStreamParam>();
    toStructure(&vecStreams, pTo.get());
    EXPECT_EQ(std::memcmp(pFrom.get(), pTo.get(), sizeof(tagAllAVStreamParam)), 0);
}

TEST(StructConversions, KeepEveryFieldOfAText) {
    auto pFrom = std::make_unique<tagOSDUserParamList>();
    pFrom->Count = 1;
    tagOSDUserParam& param = pFrom->Params[0];
    param = {1, 2, {3, 4, 5}, {6, 7, 8}, 9, 1, 11, 2, {}};
    param.Canvases[1] = {{12, 13, 14, 15}, 16, 17, 18, 19, 2, {}};
    param.Canvases[1].OSDInfos[1] = {20, 21, 22, 1, 24, "Gate 4"};
    const auto vecParams = recordsOf<OSDUserParam>(*pFrom);
    ASSERT_EQ(vecParams.size(), 1U);
    EXPECT_EQ(vecParams[0].getOSDGlobalParam().getOSDFontInverseColor().getB(), 8);
    auto pTo = std::make_unique<tagOSDUserParamList>();
    toStructure(&vecParams, pTo.get());
    EXPECT_EQ(std::memcmp(pFrom.get(), pTo.get(), sizeof(tagOSDUserParamList)), 0);
}

TEST(StructConversions, ReadNoMoreThanTheCapacity) {
    auto pStreams = filledWith<tagAllAVStreamParam>('x');
    auto pParams = filledWith<tagOSDUserParamList>('x');  // all counts huge, no text with an end
    pStreams->Count = pParams->Count = Highest;
    const auto vecStreams = recordsOf<AVStreamParam>(*pStreams);
    ASSERT_EQ(vecStreams.size(), std::size_t{MaxAVStreams});
    EXPECT_EQ(vecStreams.back().getStreamName(), std::string(36, 'x'));
    const auto vecParams = recordsOf<OSDUserParam>(*pParams);
    ASSERT_EQ(vecParams.size(), std::size_t{MaxOSDUserParams});
    const auto& vecCanvases = vecParams.back().getCanvasProperList();
    ASSERT_EQ(vecCanvases.size(), 5U);
    ASSERT_EQ(vecCanvases.back().getOSDInfoList().size(), 5U);
    EXPECT_EQ(vecCanvases.back().getOSDInfoList().back().getInfo(), std::string(256, 'x'));
}

TEST(StructConversions, ReadNothingForACountBelowOne) {
    for (const int nCount : {0, -1, Lowest}) {
        auto pStreams = filledWith<tagAllAVStreamParam>('x');
        pStreams->Count = nCount;
        EXPECT_TRUE(recordsOf<AVStreamParam>(*pStreams).empty());
        auto pParams = filledWith<tagOSDUserParamList>('x');
        pParams->Count = 1;
        pParams->Params[0].CanvasCount = nCount;
        EXPECT_TRUE(recordsOf<OSDUserParam>(*pParams).at(0).getCanvasProperList().empty());
    }
}

TEST(StructConversions, WriteNoMoreThanTheCapacityAndCountWhatTheyWrote) {
    auto pStreams = std::make_unique<tagAllAVStreamParam>();
    const std::vector<AVStreamParam> vecStreams(MaxAVStreams + 1);
    toStructure(&vecStreams, pStreams.get());
    EXPECT_EQ(pStreams->Count, MaxAVStreams);

    auto pChannels = std::make_unique<tagAllChannelInfo>();
    const std::vector<ChannelInfo> vecChannels(MaxChannels + 1);
    toStructure(&vecChannels, pChannels.get());
    EXPECT_EQ(pChannels->Count, MaxChannels);

    auto pParams = std::make_unique<tagOSDUserParamList>();
    const std::vector<OSDUserParam> vecParams(MaxOSDUserParams + 1, textOf(6, 6, "text"));
    toStructure(&vecParams, pParams.get());
    EXPECT_EQ(pParams->Count, MaxOSDUserParams);
    EXPECT_EQ(pParams->Params[MaxOSDUserParams - 1].CanvasCount, 5);
    EXPECT_EQ(pParams->Params[MaxOSDUserParams - 1].Canvases[4].OSDInfoCount, 5);
}

TEST(StructConversions, LeaveWhatStandsBehindTheLastElement) {
    auto pStreams = filledWith<tagAllAVStreamParam>('x');
    const std::vector<AVStreamParam> vecStreams(2);
    toStructure(&vecStreams, pStreams.get());
    EXPECT_EQ(pStreams->Count, 2);
    EXPECT_EQ(pStreams->Streams[1].ChannelId, 0);
    EXPECT_EQ(pStreams->Streams[2].StreamName[0], 'x');
}

TEST(StructConversions, CutTextsToTheirFields) {
    const std::string strLong(300, 'n');
    auto pStreams = std::make_unique<tagAllAVStreamParam>();
    const std::vector<AVStreamParam> vecStreams{namedStream(strLong), namedStream("")};
    toStructure(&vecStreams, pStreams.get());
    EXPECT_STREQ(pStreams->Streams[0].StreamName, std::string(35, 'n').c_str());
    EXPECT_EQ(pStreams->Streams[0].VideoHeight, 0);
    EXPECT_STREQ(pStreams->Streams[1].StreamName, "");

    auto pParams = std::make_unique<tagOSDUserParamList>();
    const std::vector<OSDUserParam> vecParams{textOf(1, 1, strLong)};
    toStructure(&vecParams, pParams.get());
    EXPECT_STREQ(pParams->Params[0].Canvases[0].OSDInfos[0].Info, std::string(255, 'n').c_str());
    EXPECT_EQ(pParams->Params[0].Canvases[0].OSDInfos[0].EnableFlag, 1);
}

TEST(StructConversions, EndAChannelsTextsOnlyWhereThereIsRoom) {
    for (const std::size_t nLength : {std::size_t{31}, std::size_t{48}, std::size_t{300}}) {
        ChannelInfo channel;
        channel.setChannelName(std::string(nLength, 'n'));
        channel.setDeviceID(std::string(nLength, 'd'));
        channel.setDeviceType(103);
        auto pChannels = filledWith<tagAllChannelInfo>('x');
        const std::vector<ChannelInfo> vecChannels{channel};
        toStructure(&vecChannels, pChannels.get());
        const tagChannelInfo& written = pChannels->Channels[0];
        EXPECT_EQ(strnlen(written.ChannelName, 48), std::min<std::size_t>(nLength, 48));
        EXPECT_EQ(strnlen(written.DeviceID, 32), std::min<std::size_t>(nLength, 32));
        EXPECT_EQ(written.DeviceType, 103);
    }
}

TEST(StructConversions, DoNothingWithNullPointers) {
    std::vector<AVStreamParam> vecStreams(1);
    auto pStreams = filledWith<tagAllAVStreamParam>(0);
    toRecords(static_cast<const tagAllAVStreamParam*>(nullptr), &vecStreams);
    toRecords(pStreams.get(), nullptr);
    toStructure(&vecStreams, nullptr);
    toStructure(nullptr, pStreams.get());
    EXPECT_EQ(vecStreams.size(), 1U);
    EXPECT_EQ(pStreams->Count, 0);
}
