// Field by field, both ways; all bounds are in the few templates at the top.
#include "device/StructConversions.h"

#include <algorithm>
#include <cstring>
#include <string>

namespace fleetkit {

using namespace NS_TARN_STRUCT;

namespace {

// The elements of an array that its count names.
template <class Element, std::size_t Capacity, class Read>
void readElements(std::int32_t nCount, const Element (&arrElements)[Capacity], Read read) {
    const std::int32_t nRead = std::clamp(nCount, 0, static_cast<std::int32_t>(Capacity));
    std::for_each_n(arrElements, nRead, read);
}

template <class Record, class Element, std::size_t Capacity, class Write>
void writeElements(const std::vector<Record>& vecRecords, std::int32_t& nCount,
                   Element (&arrElements)[Capacity], Write write) {
    const std::size_t nWritten = std::min(vecRecords.size(), Capacity);
    nCount = static_cast<std::int32_t>(nWritten);
    for (std::size_t i = 0; i < nWritten; ++i) {
        write(vecRecords[i], arrElements[i]);
    }
}

template <std::size_t Size>
std::string readText(const char (&szField)[Size]) {
    return {szField, strnlen(szField, Size)};
}

// How much of a text fits into so many bytes without a piece of a character of UTF-8 at its end,
// which a device would refuse with all that surrounds it.
std::size_t fitting(const std::string& strText, std::size_t nMost) {
    if (strText.size() <= nMost) {
        return strText.size();
    }
    for (std::size_t nBack = 1; nBack <= std::min<std::size_t>(nMost, 3); ++nBack) {
        const auto nByte = static_cast<unsigned char>(strText[nMost - nBack]);
        if (nByte < 0x80) {
            return nMost;
        }
        if (nByte >= 0xC0) {
            const std::size_t nLength = nByte >= 0xF0 ? 4 : nByte >= 0xE0 ? 3 : 2;
            return nLength > nBack ? nMost - nBack : nMost;
        }
    }
    return nMost;
}

template <std::size_t Size>
void writeText(const std::string& strText, char (&szField)[Size]) {
    szField[strText.copy(szField, fitting(strText, Size - 1))] = '\0';
}

template <std::size_t Size>
void fillText(const std::string& strText, char (&szField)[Size]) {
    std::fill(szField + strText.copy(szField, fitting(strText, Size)), szField + Size, '\0');
}

RGBColor readColor(const tagRGBColor& from) {
    RGBColor color;
    color.setR(from.R);
    color.setG(from.G);
    color.setB(from.B);
    return color;
}

tagRGBColor writeColor(const RGBColor& color) {
    return {color.getR(), color.getG(), color.getB()};
}

AreaParam readArea(const tagAreaParam& from) {
    AreaParam area;
    area.setTopX(from.TopX);
    area.setTopY(from.TopY);
    area.setWidth(from.Width);
    area.setHeight(from.Height);
    return area;
}

tagAreaParam writeArea(const AreaParam& area) {
    return {area.getTopX(), area.getTopY(), area.getWidth(), area.getHeight()};
}

AVStreamParam readStream(const tagAVStreamParam& from) {
    AVStreamParam stream;
    stream.setChannelId(from.ChannelId);
    stream.setStreamId(from.StreamId);
    stream.setStreamName(readText(from.StreamName));
    stream.setVideoHeight(from.VideoHeight);
    stream.setVideoWidth(from.VideoWidth);
    stream.setFrameRate(from.FrameRate);
    stream.setBitRateType(from.BitRateType);
    stream.setBitRate(from.BitRate);
    stream.setQuality(from.Quality);
    stream.setIFrameInterval(from.IFrameInterval);
    stream.setIFrameIntervalUnit(from.IFrameIntervalUnit);
    stream.setVideoEncoderType(from.VideoEncoderType);
    stream.setVideoEncodeLevel(from.VideoEncodeLevel);
    stream.setAudioEncoderType(from.AudioEncoderType);
    return stream;
}

void writeStream(const AVStreamParam& stream, tagAVStreamParam& to) {
    to.ChannelId = stream.getChannelId();
    to.StreamId = stream.getStreamId();
    writeText(stream.getStreamName(), to.StreamName);
    to.VideoHeight = stream.getVideoHeight();
    to.VideoWidth = stream.getVideoWidth();
    to.FrameRate = stream.getFrameRate();
    to.BitRateType = stream.getBitRateType();
    to.BitRate = stream.getBitRate();
    to.Quality = stream.getQuality();
    to.IFrameInterval = stream.getIFrameInterval();
    to.IFrameIntervalUnit = stream.getIFrameIntervalUnit();
    to.VideoEncoderType = stream.getVideoEncoderType();
    to.VideoEncodeLevel = stream.getVideoEncodeLevel();
    to.AudioEncoderType = stream.getAudioEncoderType();
}

ChannelInfo readChannel(const tagChannelInfo& from) {
    ChannelInfo channel;
    channel.setLocalChannelID(from.LocalChannelID);
    channel.setState(from.State);
    channel.setDeviceType(from.DeviceType);
    channel.setChannelName(readText(from.ChannelName));
    channel.setDeviceID(readText(from.DeviceID));
    return channel;
}

void writeChannel(const ChannelInfo& channel, tagChannelInfo& to) {
    to.LocalChannelID = channel.getLocalChannelID();
    to.State = channel.getState();
    to.DeviceType = channel.getDeviceType();
    fillText(channel.getChannelName(), to.ChannelName);
    fillText(channel.getDeviceID(), to.DeviceID);
}

OSDInfo readOSDInfo(const tagOSDInfo& from) {
    OSDInfo info;
    info.setAreaID(from.AreaID);
    info.setArrowID(from.ArrowID);
    info.setType(from.Type);
    info.setEnableFlag(from.EnableFlag != 0);
    info.setShowMode(from.ShowMode);
    info.setInfo(readText(from.Info));
    return info;
}

void writeOSDInfo(const OSDInfo& info, tagOSDInfo& to) {
    to.AreaID = info.getAreaID();
    to.ArrowID = info.getArrowID();
    to.Type = info.getType();
    to.EnableFlag = info.getEnableFlag();
    to.ShowMode = info.getShowMode();
    writeText(info.getInfo(), to.Info);
}

CanvasProper readCanvas(const tagCanvasProper& from) {
    CanvasProper canvas;
    canvas.setAreaParam(readArea(from.AreaParam));
    canvas.setFrontWidth(from.FrontWidth);
    canvas.setFrontHeight(from.FrontHeight);
    canvas.setAlignMode(from.AlignMode);
    canvas.setAreaID(from.AreaID);
    std::vector<OSDInfo> vecInfos;
    readElements(from.OSDInfoCount, from.OSDInfos,
                 [&](const tagOSDInfo& info) { vecInfos.push_back(readOSDInfo(info)); });
    canvas.setOSDInfoList(std::move(vecInfos));
    return canvas;
}

void writeCanvas(const CanvasProper& canvas, tagCanvasProper& to) {
    to.AreaParam = writeArea(canvas.getAreaParam());
    to.FrontWidth = canvas.getFrontWidth();
    to.FrontHeight = canvas.getFrontHeight();
    to.AlignMode = canvas.getAlignMode();
    to.AreaID = canvas.getAreaID();
    writeElements(canvas.getOSDInfoList(), to.OSDInfoCount, to.OSDInfos, writeOSDInfo);
}

OSDGlobalParam readOSDGlobal(const tagOSDUserParam& from) {
    OSDGlobalParam global;
    global.setTimeFormatID(from.TimeFormatID);
    global.setOSDFontColor(readColor(from.OSDFontColor));
    global.setOSDFontInverseColor(readColor(from.OSDFontInverseColor));
    global.setOSDFontAlpha(from.OSDFontAlpha);
    global.setInverseFlag(from.InverseFlag != 0);
    global.setChannelId(from.ChannelId);
    return global;
}

OSDUserParam readOSDUser(const tagOSDUserParam& from) {
    OSDUserParam param;
    param.setCameraId(from.CameraId);
    param.setOSDGlobalParam(readOSDGlobal(from));
    std::vector<CanvasProper> vecCanvases;
    readElements(from.CanvasCount, from.Canvases,
                 [&](const tagCanvasProper& canvas) { vecCanvases.push_back(readCanvas(canvas)); });
    param.setCanvasProperList(std::move(vecCanvases));
    return param;
}

void writeOSDUser(const OSDUserParam& param, tagOSDUserParam& to) {
    const OSDGlobalParam& global = param.getOSDGlobalParam();
    to.CameraId = param.getCameraId();
    to.TimeFormatID = global.getTimeFormatID();
    to.OSDFontColor = writeColor(global.getOSDFontColor());
    to.OSDFontInverseColor = writeColor(global.getOSDFontInverseColor());
    to.OSDFontAlpha = global.getOSDFontAlpha();
    to.InverseFlag = global.getInverseFlag();
    to.ChannelId = global.getChannelId();
    writeElements(param.getCanvasProperList(), to.CanvasCount, to.Canvases, writeCanvas);
}

}  // namespace

void toRecords(const tagAllAVStreamParam* pStreams, std::vector<AVStreamParam>* pRecords) {
    if (pStreams && pRecords) {
        readElements(pStreams->Count, pStreams->Streams, [&](const tagAVStreamParam& stream) {
            pRecords->push_back(readStream(stream));
        });
    }
}

void toRecords(const tagAllChannelInfo* pChannels, std::vector<ChannelInfo>* pRecords) {
    if (pChannels && pRecords) {
        readElements(pChannels->Count, pChannels->Channels, [&](const tagChannelInfo& channel) {
            pRecords->push_back(readChannel(channel));
        });
    }
}

void toRecords(const tagOSDUserParamList* pParams, std::vector<OSDUserParam>* pRecords) {
    if (pParams && pRecords) {
        readElements(pParams->Count, pParams->Params, [&](const tagOSDUserParam& param) {
            pRecords->push_back(readOSDUser(param));
        });
    }
}

void toStructure(const std::vector<AVStreamParam>* pRecords, tagAllAVStreamParam* pStreams) {
    if (pRecords && pStreams) {
        writeElements(*pRecords, pStreams->Count, pStreams->Streams, writeStream);
    }
}

void toStructure(const std::vector<ChannelInfo>* pRecords, tagAllChannelInfo* pChannels) {
    if (pRecords && pChannels) {
        writeElements(*pRecords, pChannels->Count, pChannels->Channels, writeChannel);
    }
}

void toStructure(const std::vector<OSDUserParam>* pRecords, tagOSDUserParamList* pParams) {
    if (pRecords && pParams) {
        writeElements(*pRecords, pParams->Count, pParams->Params, writeOSDUser);
    }
}

}  // namespace fleetkit
