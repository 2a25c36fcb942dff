// The plain structures of fixed layout in which FleetKit hands over streams, channels and on-screen
// texts.
//
// All integers are 32-bit and signed, texts are 8-bit. The arrays have the capacities below. When a
// function fills a structure, it writes at most that many elements, and the count that it writes is
// the number of elements written; elements behind them stay as they were. When a function reads
// one, a count below 1 means none, and a count above the capacity means the capacity.
//
// A text that is read ends at its zero or at the end of its field. A text that is written is cut to
// its field and ends in a zero, except `ChannelName` and `DeviceID`: a text that fills one of these
// has no zero behind it.
//
// The outer structures are large, `tagOSDUserParamList` has 1.8 MB: do not put them on a stack.
#pragma once

#include <cstddef>
#include <cstdint>

namespace NS_TARN_STRUCT {

constexpr std::int32_t MaxAVStreams = 1024;     // of all channels together
constexpr std::int32_t MaxChannels = 256;       // of one recorder
constexpr std::int32_t MaxOSDUserParams = 256;  // one for each channel
constexpr std::int32_t MaxCanvases = 5;         // in an OSD element
constexpr std::int32_t MaxOSDInfos = 5;         // in a canvas

struct tagAVStreamParam {
    std::int32_t ChannelId;
    std::int32_t StreamId;
    char StreamName[36];
    std::int32_t VideoHeight;  // pixels
    std::int32_t VideoWidth;   // pixels
    std::int32_t FrameRate;    // frames a second
    std::int32_t BitRateType;
    std::int32_t BitRate;
    std::int32_t Quality;
    std::int32_t IFrameInterval;
    std::int32_t IFrameIntervalUnit;
    std::int32_t VideoEncoderType;
    std::int32_t VideoEncodeLevel;
    std::int32_t AudioEncoderType;
};

struct tagAllAVStreamParam {
    std::int32_t Count;
    tagAVStreamParam Streams[MaxAVStreams];
};

struct tagChannelInfo {
    std::int32_t LocalChannelID;
    std::int32_t State;
    std::int32_t DeviceType;
    char ChannelName[48];  // no zero at its end when the text fills it
    char DeviceID[32];     // likewise
};

struct tagAllChannelInfo {
    std::int32_t Count;
    tagChannelInfo Channels[MaxChannels];
};

struct tagRGBColor {
    std::int32_t R;
    std::int32_t G;
    std::int32_t B;
};

struct tagAreaParam {
    std::int32_t TopX;
    std::int32_t TopY;
    std::int32_t Width;
    std::int32_t Height;
};

struct tagOSDInfo {
    std::int32_t AreaID;
    std::int32_t ArrowID;
    std::int32_t Type;
    std::int32_t EnableFlag;  // 0 or 1
    std::int32_t ShowMode;
    char Info[256];
};

struct tagCanvasProper {
    tagAreaParam AreaParam;
    std::int32_t FrontWidth;
    std::int32_t FrontHeight;
    std::int32_t AlignMode;
    std::int32_t AreaID;
    std::int32_t OSDInfoCount;
    tagOSDInfo OSDInfos[MaxOSDInfos];
};

struct tagOSDUserParam {
    std::int32_t CameraId;
    std::int32_t TimeFormatID;
    tagRGBColor OSDFontColor;
    tagRGBColor OSDFontInverseColor;
    std::int32_t OSDFontAlpha;
    std::int32_t InverseFlag;  // 0 or 1
    std::int32_t ChannelId;
    std::int32_t CanvasCount;
    tagCanvasProper Canvases[MaxCanvases];
};

struct tagOSDUserParamList {
    std::int32_t Count;
    tagOSDUserParam Params[MaxOSDUserParams];
};

// The login data of the video library, whose own headers define it. FleetKit passes it through.
struct tagDeviceInfoEx;

// The layout is part of the library's binary interface.

static_assert(offsetof(tagAVStreamParam, ChannelId) == 0);
static_assert(offsetof(tagAVStreamParam, StreamId) == 4);
static_assert(offsetof(tagAVStreamParam, StreamName) == 8);
static_assert(offsetof(tagAVStreamParam, VideoHeight) == 44);
static_assert(offsetof(tagAVStreamParam, VideoWidth) == 48);
static_assert(offsetof(tagAVStreamParam, FrameRate) == 52);
static_assert(offsetof(tagAVStreamParam, BitRateType) == 56);
static_assert(offsetof(tagAVStreamParam, BitRate) == 60);
static_assert(offsetof(tagAVStreamParam, Quality) == 64);
static_assert(offsetof(tagAVStreamParam, IFrameInterval) == 68);
static_assert(offsetof(tagAVStreamParam, IFrameIntervalUnit) == 72);
static_assert(offsetof(tagAVStreamParam, VideoEncoderType) == 76);
static_assert(offsetof(tagAVStreamParam, VideoEncodeLevel) == 80);
static_assert(offsetof(tagAVStreamParam, AudioEncoderType) == 84);
static_assert(sizeof(tagAVStreamParam) == 88);
static_assert(offsetof(tagAllAVStreamParam, Streams) == 4);
static_assert(sizeof(tagAllAVStreamParam) == 4 + 88 * MaxAVStreams);

static_assert(offsetof(tagChannelInfo, LocalChannelID) == 0);
static_assert(offsetof(tagChannelInfo, State) == 4);
static_assert(offsetof(tagChannelInfo, DeviceType) == 8);
static_assert(offsetof(tagChannelInfo, ChannelName) == 12);
static_assert(offsetof(tagChannelInfo, DeviceID) == 60);
static_assert(sizeof(tagChannelInfo) == 92);
static_assert(offsetof(tagAllChannelInfo, Channels) == 4);
static_assert(sizeof(tagAllChannelInfo) == 4 + 92 * MaxChannels);

static_assert(offsetof(tagOSDInfo, AreaID) == 0);
static_assert(offsetof(tagOSDInfo, ArrowID) == 4);
static_assert(offsetof(tagOSDInfo, Type) == 8);
static_assert(offsetof(tagOSDInfo, EnableFlag) == 12);
static_assert(offsetof(tagOSDInfo, ShowMode) == 16);
static_assert(offsetof(tagOSDInfo, Info) == 20);
static_assert(sizeof(tagOSDInfo) == 276);

static_assert(offsetof(tagAreaParam, TopX) == 0);
static_assert(offsetof(tagAreaParam, TopY) == 4);
static_assert(offsetof(tagAreaParam, Width) == 8);
static_assert(offsetof(tagAreaParam, Height) == 12);
static_assert(offsetof(tagCanvasProper, AreaParam) == 0);
static_assert(offsetof(tagCanvasProper, FrontWidth) == 16);
static_assert(offsetof(tagCanvasProper, FrontHeight) == 20);
static_assert(offsetof(tagCanvasProper, AlignMode) == 24);
static_assert(offsetof(tagCanvasProper, AreaID) == 28);
static_assert(offsetof(tagCanvasProper, OSDInfoCount) == 32);
static_assert(offsetof(tagCanvasProper, OSDInfos) == 36);
static_assert(sizeof(tagCanvasProper) == 1416);

static_assert(offsetof(tagOSDUserParam, CameraId) == 0);
static_assert(offsetof(tagOSDUserParam, TimeFormatID) == 4);
static_assert(offsetof(tagOSDUserParam, OSDFontColor) == 8);
static_assert(offsetof(tagOSDUserParam, OSDFontInverseColor) == 20);
static_assert(offsetof(tagOSDUserParam, OSDFontAlpha) == 32);
static_assert(offsetof(tagOSDUserParam, InverseFlag) == 36);
static_assert(offsetof(tagOSDUserParam, ChannelId) == 40);
static_assert(offsetof(tagOSDUserParam, CanvasCount) == 44);
static_assert(offsetof(tagOSDUserParam, Canvases) == 48);
static_assert(sizeof(tagOSDUserParam) == 7128);
static_assert(offsetof(tagOSDUserParamList, Params) == 4);
static_assert(sizeof(tagOSDUserParamList) == 4 + 7128 * MaxOSDUserParams);

}  // namespace NS_TARN_STRUCT
