// Copies field by field between structures and records.
#include "StructRecords.h"

#include <algorithm>
#include <cstring>
#include <string>

#include "UsageError.h"

using namespace NS_TARN_STRUCT;

namespace {

// A field without a zero ends with its last byte.
template <std::size_t Size>
std::string textOf(const char (&szField)[Size]) {
    return std::string(szField, strnlen(szField, Size));
}

template <std::size_t Size>
void fillText(const std::string& strText, char (&szField)[Size], const char* szName) {
    if (strText.size() >= Size) {
        throw UsageError(std::string(szName) + " has room for " + std::to_string(Size - 1) +
                         " bytes, '" + strText + "' is longer");
    }
    std::memset(szField, 0, Size);
    std::memcpy(szField, strText.data(), strText.size());
}

// Calls for the pairs of records and elements of an array, and returns how many there are.
template <class Record, class Element, std::size_t Size, class Fill>
std::int32_t fillArray(const std::vector<Record>& vecRecords, Element (&arrElements)[Size],
                       const char* szName, Fill fill) {
    if (vecRecords.size() > Size) {
        throw UsageError(std::string(szName) + " has room for " + std::to_string(Size) +
                         " elements, not for " + std::to_string(vecRecords.size()));
    }
    for (std::size_t i = 0; i < vecRecords.size(); ++i) {
        fill(vecRecords[i], arrElements[i]);
    }
    return static_cast<std::int32_t>(vecRecords.size());
}

template <class Element, std::size_t Size, class Convert>
auto recordsOfArray(const Element (&arrElements)[Size], std::int32_t nCount, Convert convert) {
    std::vector<decltype(convert(arrElements[0]))> vecRecords;
    vecRecords.reserve(static_cast<std::size_t>(std::max(nCount, 0)));
    for (std::int32_t i = 0; i < nCount; ++i) {
        vecRecords.push_back(convert(arrElements[i]));
    }
    return vecRecords;
}

AVStreamParam recordOf(const tagAVStreamParam& stream) {
    AVStreamParam record;
    record.setChannelId(stream.ChannelId);
    record.setStreamId(stream.StreamId);
    record.setStreamName(textOf(stream.StreamName));
    record.setVideoHeight(stream.VideoHeight);
    record.setVideoWidth(stream.VideoWidth);
    record.setFrameRate(stream.FrameRate);
    record.setBitRateType(stream.BitRateType);
    record.setBitRate(stream.BitRate);
    record.setQuality(stream.Quality);
    record.setIFrameInterval(stream.IFrameInterval);
    record.setIFrameIntervalUnit(stream.IFrameIntervalUnit);
    record.setVideoEncoderType(stream.VideoEncoderType);
    record.setVideoEncodeLevel(stream.VideoEncodeLevel);
    record.setAudioEncoderType(stream.AudioEncoderType);
    return record;
}

void fillStream(const AVStreamParam& record, tagAVStreamParam& stream) {
    stream.ChannelId = record.getChannelId();
    stream.StreamId = record.getStreamId();
    fillText(record.getStreamName(), stream.StreamName, "StreamName");
    stream.VideoHeight = record.getVideoHeight();
    stream.VideoWidth = record.getVideoWidth();
    stream.FrameRate = record.getFrameRate();
    stream.BitRateType = record.getBitRateType();
    stream.BitRate = record.getBitRate();
    stream.Quality = record.getQuality();
    stream.IFrameInterval = record.getIFrameInterval();
    stream.IFrameIntervalUnit = record.getIFrameIntervalUnit();
    stream.VideoEncoderType = record.getVideoEncoderType();
    stream.VideoEncodeLevel = record.getVideoEncodeLevel();
    stream.AudioEncoderType = record.getAudioEncoderType();
}

ChannelInfo recordOf(const tagChannelInfo& channel) {
    ChannelInfo record;
    record.setLocalChannelID(channel.LocalChannelID);
    record.setState(channel.State);
    record.setDeviceType(channel.DeviceType);
    record.setChannelName(textOf(channel.ChannelName));
    record.setDeviceID(textOf(channel.DeviceID));
    return record;
}

RGBColor recordOf(const tagRGBColor& color) {
    RGBColor record;
    record.setR(color.R);
    record.setG(color.G);
    record.setB(color.B);
    return record;
}

tagRGBColor structOf(const RGBColor& record) {
    return {record.getR(), record.getG(), record.getB()};
}

AreaParam recordOf(const tagAreaParam& area) {
    AreaParam record;
    record.setTopX(area.TopX);
    record.setTopY(area.TopY);
    record.setWidth(area.Width);
    record.setHeight(area.Height);
    return record;
}

OSDInfo recordOf(const tagOSDInfo& info) {
    OSDInfo record;
    record.setAreaID(info.AreaID);
    record.setArrowID(info.ArrowID);
    record.setType(info.Type);
    record.setEnableFlag(info.EnableFlag != 0);
    record.setShowMode(info.ShowMode);
    record.setInfo(textOf(info.Info));
    return record;
}

void fillInfo(const OSDInfo& record, tagOSDInfo& info) {
    info.AreaID = record.getAreaID();
    info.ArrowID = record.getArrowID();
    info.Type = record.getType();
    info.EnableFlag = record.getEnableFlag() ? 1 : 0;
    info.ShowMode = record.getShowMode();
    fillText(record.getInfo(), info.Info, "Info");
}

CanvasProper recordOf(const tagCanvasProper& canvas) {
    CanvasProper record;
    record.setAreaParam(recordOf(canvas.AreaParam));
    record.setFrontWidth(canvas.FrontWidth);
    record.setFrontHeight(canvas.FrontHeight);
    record.setAlignMode(canvas.AlignMode);
    record.setAreaID(canvas.AreaID);
    record.setOSDInfoList(recordsOfArray(canvas.OSDInfos, canvas.OSDInfoCount,
                                         [](const tagOSDInfo& info) { return recordOf(info); }));
    return record;
}

void fillCanvas(const CanvasProper& record, tagCanvasProper& canvas) {
    const AreaParam& area = record.getAreaParam();
    canvas.AreaParam = {area.getTopX(), area.getTopY(), area.getWidth(), area.getHeight()};
    canvas.FrontWidth = record.getFrontWidth();
    canvas.FrontHeight = record.getFrontHeight();
    canvas.AlignMode = record.getAlignMode();
    canvas.AreaID = record.getAreaID();
    canvas.OSDInfoCount =
        fillArray(record.getOSDInfoList(), canvas.OSDInfos, "OSDInfoList", fillInfo);
}

OSDUserParam recordOf(const tagOSDUserParam& param) {
    OSDGlobalParam global;
    global.setTimeFormatID(param.TimeFormatID);
    global.setOSDFontColor(recordOf(param.OSDFontColor));
    global.setOSDFontInverseColor(recordOf(param.OSDFontInverseColor));
    global.setOSDFontAlpha(param.OSDFontAlpha);
    global.setInverseFlag(param.InverseFlag != 0);
    global.setChannelId(param.ChannelId);
    OSDUserParam record;
    record.setCameraId(param.CameraId);
    record.setOSDGlobalParam(global);
    record.setCanvasProperList(
        recordsOfArray(param.Canvases, param.CanvasCount,
                       [](const tagCanvasProper& canvas) { return recordOf(canvas); }));
    return record;
}

void fillParam(const OSDUserParam& record, tagOSDUserParam& param) {
    const OSDGlobalParam& global = record.getOSDGlobalParam();
    param.CameraId = record.getCameraId();
    param.TimeFormatID = global.getTimeFormatID();
    param.OSDFontColor = structOf(global.getOSDFontColor());
    param.OSDFontInverseColor = structOf(global.getOSDFontInverseColor());
    param.OSDFontAlpha = global.getOSDFontAlpha();
    param.InverseFlag = global.getInverseFlag() ? 1 : 0;
    param.ChannelId = global.getChannelId();
    param.CanvasCount =
        fillArray(record.getCanvasProperList(), param.Canvases, "CanvasProperList", fillCanvas);
}

}  // namespace

std::vector<AVStreamParam> recordsOf(const tagAllAVStreamParam& streams) {
    return recordsOfArray(streams.Streams, streams.Count,
                          [](const tagAVStreamParam& stream) { return recordOf(stream); });
}

std::vector<ChannelInfo> recordsOf(const tagAllChannelInfo& channels) {
    return recordsOfArray(channels.Channels, channels.Count,
                          [](const tagChannelInfo& channel) { return recordOf(channel); });
}

std::vector<OSDUserParam> recordsOf(const tagOSDUserParamList& params) {
    return recordsOfArray(params.Params, params.Count,
                          [](const tagOSDUserParam& param) { return recordOf(param); });
}

void fillStruct(const std::vector<AVStreamParam>& vecRecords, tagAllAVStreamParam& streams) {
    streams.Count = fillArray(vecRecords, streams.Streams, "streams", fillStream);
}

void fillStruct(const std::vector<OSDUserParam>& vecRecords, tagOSDUserParamList& params) {
    params.Count = fillArray(vecRecords, params.Params, "osd", fillParam);
}
