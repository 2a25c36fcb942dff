// What a virtual device is before anybody sets it: the records as they look on the wire, with the
// few values that depend on the options in braces.
#include <stdexcept>
#include <utility>

#include "protocol/SDKNormalXmlBodyParser.h"
#include "virtual-device/DeviceState.h"
#include "virtual-device/Request.h"

namespace {

// -------------------------------------------------------------------------------------- the device

constexpr const char* CameraText = R"(
<HardwareCapability ChannelNum="{channels}" AudioInNum="1" SoundChannelType="1" AudioOutNum="1"
    AlarmInNum="2" AlarmOutNum="1" RS485Num="1" RS232Num="1" WireNetworkNum="1" USBNum="1"
    SDNum="1" HardDiskNum="1" WiFiEnable="true" POEEnable="true" IREnable="true" PIREnable="true"
    BNCEnable="true" InternalPTZEnable="true" />
<DeviceSummaryInfo DeviceId="{id}" DeviceType="1" DeviceName="Virtual camera" DeviceIP="{ip}"
    DevicePort="{port}" MACAddr="02:00:00:00:00:01" ManufacturerName="FleetKit" ManufacturerId="1"
    ProductModel="VD-IPC" SN="VDIPC0000001" SoftWareInfo="1.0.0" HardWareInfo="virtual 1"
    UpdatePort="30011" HttpPort="8080" DeviceTime="2026-01-01 00:00:00" />)";

constexpr const char* RecorderText = R"(
<HardwareCapability ChannelNum="{channels}" AudioInNum="4" SoundChannelType="2" AudioOutNum="2"
    AlarmInNum="16" AlarmOutNum="4" RS485Num="1" RS232Num="1" WireNetworkNum="1" USBNum="3"
    SDNum="1" HardDiskNum="4" WiFiEnable="false" POEEnable="true" IREnable="false"
    PIREnable="false" BNCEnable="true" InternalPTZEnable="false" />
<DeviceSummaryInfo DeviceId="{id}" DeviceType="5" DeviceName="Virtual recorder" DeviceIP="{ip}"
    DevicePort="{port}" MACAddr="02:00:00:00:00:02" ManufacturerName="FleetKit" ManufacturerId="1"
    ProductModel="VD-NVR" SN="VDNVR0000001" SoftWareInfo="1.0.0" HardWareInfo="virtual 1"
    UpdatePort="30011" HttpPort="8080" DeviceTime="2026-01-01 00:00:00" />)";

constexpr const char* CommonText = R"(
<SoftwareCapability LoginUserMaxNum="32" PreviewMaxNum="16" PlaybackMaxNum="4">
  <SupportFunctionList>
    <SupportFunction SupportFunction="1" /><SupportFunction SupportFunction="2" />
    <SupportFunction SupportFunction="3" /><SupportFunction SupportFunction="5" />
    <SupportFunction SupportFunction="8" />
  </SupportFunctionList>
</SoftwareCapability>
<OSDAbility OSDMaxNum="25" CanvasMaxNum="5" OSDMaxWidth="1920" OSDMaxHeight="1080">
  <OSDFontAbility>
    <VideoOSDFontTypeList>
      <VideoOSDFontType FontID="1" Description="Sans" />
      <VideoOSDFontType FontID="2" Description="Serif" />
      <VideoOSDFontType FontID="3" Description="Mono" />
    </VideoOSDFontTypeList>
    <VideoOSDFontColorList>
      <RGBColor R="255" G="255" B="255" /><RGBColor R="0" G="0" B="0" />
      <RGBColor R="255" G="0" B="0" /><RGBColor R="0" G="128" B="255" />
    </VideoOSDFontColorList>
    <VideoOSDFontAlphaList>
      <VideoOSDFontAlpha VideoOSDFontAlpha="255" /><VideoOSDFontAlpha VideoOSDFontAlpha="192" />
      <VideoOSDFontAlpha VideoOSDFontAlpha="128" />
    </VideoOSDFontAlphaList>
    <VideoOSDFontInverseColorList>
      <RGBColor R="0" G="0" B="0" /><RGBColor R="255" G="255" B="255" />
    </VideoOSDFontInverseColorList>
    <FontSizeAbilityList>
      <FontSizeAbility FontSizeAbility="16x16" /><FontSizeAbility FontSizeAbility="32x32" />
      <FontSizeAbility FontSizeAbility="48x48" />
    </FontSizeAbilityList>
    <OSDTypeList>
      <OSDType ID="1" Name="Time" /><OSDType ID="2" Name="Channel name" />
      <OSDType ID="3" Name="Text" /><OSDType ID="4" Name="Bit rate" />
    </OSDTypeList>
  </OSDFontAbility>
  <OSDFormatAbility>
    <OSDFormatTypeList>
      <OSDTimeFormatType FormatId="1" Description="YYYY-MM-DD hh:mm:ss" />
      <OSDTimeFormatType FormatId="2" Description="hh:mm:ss YYYY-MM-DD" />
      <OSDTimeFormatType FormatId="3" Description="MM/DD/YYYY hh:mm:ss" />
      <OSDTimeFormatType FormatId="4" Description="hh:mm:ss MM/DD/YYYY" />
      <OSDTimeFormatType FormatId="5" Description="weekday MM/DD/YYYY hh:mm:ss" />
    </OSDFormatTypeList>
  </OSDFormatAbility>
</OSDAbility>
<AudioExAbility InterPhoneFlag="true" AudioInFlag="true" AudioOutFlag="true">
  <AudioInTypeList>
    <AudioInType AudioInTypeId="1" AudioInTypeName="Microphone" AudioInVolMax="100"
        AudioInVolMin="1" />
    <AudioInType AudioInTypeId="2" AudioInTypeName="Line in" AudioInVolMax="100"
        AudioInVolMin="1" />
  </AudioInTypeList>
  <AudioOutTypeList>
    <AudioOutType AudioOutTypeId="1" AudioOutTypeName="Loudspeaker" AudioOutVolMax="100"
        AudioOutVolMin="1" />
  </AudioOutTypeList>
  <AudioEncodeTypeList>
    <AudioEncodeType AudioEncodeTypeId="1" AudioEncodeTypeMode="1" AudioEncodeTypeName="G.711A" />
    <AudioEncodeType AudioEncodeTypeId="2" AudioEncodeTypeMode="2" AudioEncodeTypeName="G.711U" />
    <AudioEncodeType AudioEncodeTypeId="3" AudioEncodeTypeMode="1" AudioEncodeTypeName="AAC" />
  </AudioEncodeTypeList>
  <AudioDecodeTypeList>
    <AudioDecodeType AudioDecodeTypeId="1" AudioDecodeTypeMode="1" AudioDecodeTypeName="G.711A" />
    <AudioDecodeType AudioDecodeTypeId="3" AudioDecodeTypeMode="1" AudioDecodeTypeName="AAC" />
  </AudioDecodeTypeList>
</AudioExAbility>
<PTZAbilityParam VerticalMaxPositionNum="2">
  <MaxOpticalMagnificationParam MaxOpticalMagnification="30" MaxRealOpticalMagnification="33" />
  <PTZOSDParamList>
    <PTZOSDParam OSDType="1" ShowTime="5" X="16" Y="32" />
    <PTZOSDParam OSDType="2" ShowTime="10" X="16" Y="64" />
  </PTZOSDParamList>
  <PTZSpeedParam PanStepPeriod="4" TiltStepPeriod="4" PanGotoMaxSpeed="240"
      TiltGotoMaxSpeed="120" MinSpeed="1" MaxSpeed="64" Enable="true">
    <SpeedList>
      <PTZStageToSpeedParam Stage="1" PanSpeed="10" TiltSpeed="5" />
      <PTZStageToSpeedParam Stage="2" PanSpeed="60" TiltSpeed="30" />
    </SpeedList>
  </PTZSpeedParam>
  <TraceAbilityParam TraceMaxSecond="180" TraceMaxCmdNum="128" TraceBeginID="1" TraceEndID="4"
      Enable="true" />
  <TourAbilityParam TourMaxPresetNum="32" TourBeginID="1" TourEndID="8" Enable="true" />
  <ScanAbilityParam MaxScanNum="8" ScanBeginID="1" ScanEndID="8" Enable="true" />
  <PTSpeedTable SpeedType="1">
    <MagnifyPTSpeedParamList>
      <MagnifyPTSpeedParam Magnify="1">
        <PTZStageToSpeedParamList>
          <PTZStageToSpeedParam Stage="1" PanSpeed="10" TiltSpeed="5" />
        </PTZStageToSpeedParamList>
      </MagnifyPTSpeedParam>
      <MagnifyPTSpeedParam Magnify="10">
        <PTZStageToSpeedParamList>
          <PTZStageToSpeedParam Stage="1" PanSpeed="2" TiltSpeed="1" />
        </PTZStageToSpeedParamList>
      </MagnifyPTSpeedParam>
    </MagnifyPTSpeedParamList>
  </PTSpeedTable>
  <TiltAngleDisplayParam MotorTiltMinAngle="-15" MotorTiltMaxAngle="90"
      DisplayTiltMinAngle="-15" DisplayTiltMaxAngle="90" />
  <VerticalMaxPositionParam VerticalMaxPositionMost="90" VerticalMaxPositionMore="75" />
  <PresetPosAbilityParam IDRangeFrom="1" IDRangeTo="256" MaxPresetNum="256" Enable="true" />
  <GuardPosAbilityParam Enable="true" />
  <InfraredLampAbilityParam Enable="true" />
  <DueNorthAbilityParam Enable="true" />
  <TimerAbilityParam Enable="true" />
  <ThreeDimensionalPositionAbilityParam Enable="true" />
  <PTZProtocolList>
    <PTZProtocol ProtocolId="1" ProtocolName="Internal" />
    <PTZProtocol ProtocolId="2" ProtocolName="Serial" />
  </PTZProtocolList>
  <BrushParam Enable="true" />
  <LightParam Enable="true" />
</PTZAbilityParam>
<NetworkAbility NetworkCardNum="1">
  <NetworkCardAbilityList>
    <NetworkCardAbility NetWorkCardId="1" NetWorkCardType="1" NetWorkCardName="eth0"
        Description="Wired network" SupportAlarm="true" SupportIPConfigFlag="true"
        SupportDHCPServerFlag="true" SupportDHCPClientFlag="true" SupportDNSConfigFlag="true"
        SupportPOEConfigFlag="true" />
  </NetworkCardAbilityList>
</NetworkAbility>
<MotionDetectionAbility MotionDetectionStreamID="1" MaxSensitivity="100" MinSensitivity="1"
    DefaultSensitivity="60" DefaultWidthCellNumber="22" DefaultHighCellNumber="18"
    MaxWidthCellNumber="44" MinWidthCellNumber="11" MaxHighCellNumber="36"
    MinHighCellNumber="9" />
<BlindAbility BlindStreamID="1" MaxBlindAreaNum="8" BlindAreaRate="25" BlindDeviceType="1">
  <BlindTypeAbilityList>
    <BlindTypeAbility BlindType="1">
      <RGBColorList><RGBColor R="0" G="0" B="0" /><RGBColor R="255" G="255" B="255" /></RGBColorList>
    </BlindTypeAbility>
    <BlindTypeAbility BlindType="2">
      <RGBColorList><RGBColor R="128" G="128" B="128" /></RGBColorList>
    </BlindTypeAbility>
  </BlindTypeAbilityList>
</BlindAbility>
<SensorAbility SensorControllerOpenType="1" />
<DiskAbility>
  <FileSystemList>
    <FileSystem FileSystemType="1" FileSystemName="ext4" />
    <FileSystem FileSystemType="2" FileSystemName="vfat" />
  </FileSystemList>
  <DiskAttributeExList>
    <DiskAttributeEx DiskAttribute="1" AttributeName="Read and write" />
    <DiskAttributeEx DiskAttribute="2" AttributeName="Read only" />
  </DiskAttributeExList>
  <DiskSummaryInfoList>
    <DiskSummaryInfo DiskID="1" DiskType="1" PartitionSize="1907729" FileSystem="1"
        Path="/mnt/disk1" Port="sata1" UseType="1" />
    <DiskSummaryInfo DiskID="2" DiskType="2" PartitionSize="61035" FileSystem="2"
        Path="/mnt/card" Port="sd1" UseType="2" />
  </DiskSummaryInfoList>
  <RaidAbility SupportRaid="true" SupportGlobalDisk="true" MaxRaidNumber="2"
      SupportDiskSleep="true" AutoRebuild="true">
    <RaidLevelList><RaidLevel RaidLevel="1" /><RaidLevel RaidLevel="5" /></RaidLevelList>
  </RaidAbility>
</DiskAbility>
<ExternUARTAbility>
  <ExternComInfoList>
    <ExternComInfo ExternComType="RS485">
      <ExternComIDList><ExternComID ExternComID="1" /></ExternComIDList>
    </ExternComInfo>
    <ExternComInfo ExternComType="RS232">
      <ExternComIDList><ExternComID ExternComID="2" /></ExternComIDList>
    </ExternComInfo>
  </ExternComInfoList>
  <BaudRateList>
    <BaudRate BaudRate="2400" /><BaudRate BaudRate="9600" /><BaudRate BaudRate="115200" />
  </BaudRateList>
  <DataBitsList><DataBits DataBits="7" /><DataBits DataBits="8" /></DataBitsList>
  <StopBitsList>
    <StopBits StopBits="1" /><StopBits StopBits="1.5" /><StopBits StopBits="2" />
  </StopBitsList>
  <ParityList>
    <Parity Parity="none" /><Parity Parity="even" /><Parity Parity="odd" />
  </ParityList>
</ExternUARTAbility>
<HostNetworkList>
  <HostNetwork NetId="1" WorkingType="1" DHCP="false" LocalIp="{ip}"
      LocalSubnetMask="255.0.0.0" Gateway="127.0.0.254" PrimaryDNSIp="127.0.0.53"
      SpareDNSIp="127.0.0.54" IPProtoVer="{ip-version}" />
</HostNetworkList>
<DevicePort DeviceId="{id}" ControlPort="{port}" TCPAVPort="30002" RTSPPort="554" RTPPort="30004"
    RTCPPort="30005" RegisterPort="30006" HttpPort="8080" ReservePort1="30007"
    ReservePort2="30008" ReservePort3="30009" ReservePort4="30010" />
<NTPParam NTPEnableFlag="true" NTPIp="pool.ntp.example.org" NTPPort="123" NTPRunTime="60"
    IPProtoVer="1" />
<ProtocolSecurityParam SecurityVerificationType="1" UserVerificationFlag="true" />)";

// -------------------------------------------------------------------------------------- time zones

// A zone without daylight saving has zeros for it. Weekly 5 is the last week of the month, week day
// 7 is Sunday, times are seconds of the day. The first zone is the one that a device starts with.
constexpr const char* TimeZoneText = R"(
<TimeZoneParamList>
  <TimeZoneParam TimeZone="3" DSTOpenFlag="true" DSTOffset="60" BeginMonth="3" BeginWeekly="5"
      BeginWeekDays="7" BeginTime="7200" EndMonth="10" EndWeekly="5" EndWeekDays="7"
      EndTime="10800" />
  <TimeZoneParam TimeZone="1" DSTOpenFlag="true" DSTOffset="60" BeginMonth="3" BeginWeekly="2"
      BeginWeekDays="7" BeginTime="7200" EndMonth="11" EndWeekly="1" EndWeekDays="7"
      EndTime="7200" />
  <TimeZoneParam TimeZone="2" DSTOpenFlag="true" DSTOffset="60" BeginMonth="3" BeginWeekly="5"
      BeginWeekDays="7" BeginTime="3600" EndMonth="10" EndWeekly="5" EndWeekDays="7"
      EndTime="7200" />
  <TimeZoneParam TimeZone="4" DSTOpenFlag="false" DSTOffset="0" BeginMonth="0" BeginWeekly="0"
      BeginWeekDays="0" BeginTime="0" EndMonth="0" EndWeekly="0" EndWeekDays="0" EndTime="0" />
</TimeZoneParamList>)";

constexpr const char* LanguageText = R"(
<LanguageAbility>
  <LanguageTypeList>
    <LanguageType LanguageID="1" LanguageName="English" />
    <LanguageType LanguageID="2" LanguageName="中文" />
    <LanguageType LanguageID="3" LanguageName="Deutsch" />
    <LanguageType LanguageID="4" LanguageName="Français" />
  </LanguageTypeList>
</LanguageAbility>)";

// One for each language, in their order.
constexpr const char* TimeZoneNameTexts[] = {
    R"(
<TimeZoneAbility>
  <TimeZoneTypeList>
    <TimeZoneType TimeZoneID="1" TimeZoneName="(UTC-05:00) Eastern Time"
        STDTimeZoneAbbreviation="EST" DSTTimeZoneAbbreviation="EDT" />
    <TimeZoneType TimeZoneID="2" TimeZoneName="(UTC+00:00) London"
        STDTimeZoneAbbreviation="GMT" DSTTimeZoneAbbreviation="BST" />
    <TimeZoneType TimeZoneID="3" TimeZoneName="(UTC+01:00) Berlin, Paris, Vienna"
        STDTimeZoneAbbreviation="CET" DSTTimeZoneAbbreviation="CEST" />
    <TimeZoneType TimeZoneID="4" TimeZoneName="(UTC+08:00) Beijing"
        STDTimeZoneAbbreviation="CST" DSTTimeZoneAbbreviation="CDT" />
  </TimeZoneTypeList>
</TimeZoneAbility>)",
    R"(
<TimeZoneAbility>
  <TimeZoneTypeList>
    <TimeZoneType TimeZoneID="1" TimeZoneName="(UTC-05:00) 东部时间"
        STDTimeZoneAbbreviation="EST" DSTTimeZoneAbbreviation="EDT" />
    <TimeZoneType TimeZoneID="2" TimeZoneName="(UTC+00:00) 伦敦"
        STDTimeZoneAbbreviation="GMT" DSTTimeZoneAbbreviation="BST" />
    <TimeZoneType TimeZoneID="3" TimeZoneName="(UTC+01:00) 柏林、巴黎、维也纳"
        STDTimeZoneAbbreviation="CET" DSTTimeZoneAbbreviation="CEST" />
    <TimeZoneType TimeZoneID="4" TimeZoneName="(UTC+08:00) 北京"
        STDTimeZoneAbbreviation="CST" DSTTimeZoneAbbreviation="CDT" />
  </TimeZoneTypeList>
</TimeZoneAbility>)",
    R"(
<TimeZoneAbility>
  <TimeZoneTypeList>
    <TimeZoneType TimeZoneID="1" TimeZoneName="(UTC-05:00) Ostküste der USA"
        STDTimeZoneAbbreviation="EST" DSTTimeZoneAbbreviation="EDT" />
    <TimeZoneType TimeZoneID="2" TimeZoneName="(UTC+00:00) London"
        STDTimeZoneAbbreviation="GMT" DSTTimeZoneAbbreviation="BST" />
    <TimeZoneType TimeZoneID="3" TimeZoneName="(UTC+01:00) Berlin, Paris, Wien"
        STDTimeZoneAbbreviation="MEZ" DSTTimeZoneAbbreviation="MESZ" />
    <TimeZoneType TimeZoneID="4" TimeZoneName="(UTC+08:00) Peking"
        STDTimeZoneAbbreviation="CST" DSTTimeZoneAbbreviation="CDT" />
  </TimeZoneTypeList>
</TimeZoneAbility>)",
    R"(
<TimeZoneAbility>
  <TimeZoneTypeList>
    <TimeZoneType TimeZoneID="1" TimeZoneName="(UTC-05:00) Heure de l'Est"
        STDTimeZoneAbbreviation="HNE" DSTTimeZoneAbbreviation="HAE" />
    <TimeZoneType TimeZoneID="2" TimeZoneName="(UTC+00:00) Londres"
        STDTimeZoneAbbreviation="GMT" DSTTimeZoneAbbreviation="BST" />
    <TimeZoneType TimeZoneID="3" TimeZoneName="(UTC+01:00) Berlin, Paris, Vienne"
        STDTimeZoneAbbreviation="HNEC" DSTTimeZoneAbbreviation="HAEC" />
    <TimeZoneType TimeZoneID="4" TimeZoneName="(UTC+08:00) Pékin"
        STDTimeZoneAbbreviation="CST" DSTTimeZoneAbbreviation="CDT" />
  </TimeZoneTypeList>
</TimeZoneAbility>)",
};

// --------------------------------------------------------------------------------- of each channel

constexpr const char* ChannelText = R"(
<ChannelInfo LocalChannelID="{channel}" State="1" ChannelName="Channel {channel}"
    DeviceID="{id}-{channel}" DeviceType="1" />
<OSDUserParam CameraId="{channel}">
  <OSDGlobalParam TimeFormatID="1" OSDFontAlpha="255" InverseFlag="true" ChannelId="{channel}">
    <OSDFontColor R="255" G="255" B="255" />
    <OSDFontInverseColor R="1" G="1" B="1" />
  </OSDGlobalParam>
  <CanvasProperList>
    <CanvasProper FrontWidth="32" FrontHeight="32" AlignMode="1" AreaID="1">
      <AreaParam TopX="16" TopY="16" Width="640" Height="64" />
      <OSDInfoList>
        <OSDInfo AreaID="1" ArrowID="1" Type="1" EnableFlag="true" ShowMode="1" Info="time" />
        <OSDInfo AreaID="1" ArrowID="2" Type="2" EnableFlag="true" ShowMode="1"
            Info="Channel {channel}" />
      </OSDInfoList>
    </CanvasProper>
    <CanvasProper FrontWidth="16" FrontHeight="16" AlignMode="2" AreaID="2">
      <AreaParam TopX="16" TopY="1000" Width="800" Height="48" />
      <OSDInfoList>
        <OSDInfo AreaID="2" ArrowID="1" Type="3" EnableFlag="true" ShowMode="1"
            Info="virtual device" />
      </OSDInfoList>
    </CanvasProper>
  </CanvasProperList>
</OSDUserParam>)";

constexpr const char* VideoAbilityText = R"(
<VideoAbility>
  <VideoAbilityParamList>
    <VideoAbilityParam ChannelId="{channel}">
      <ROIAbility Support="true" MaxNum="8" MaxScale="50" MaxLevel="6">
        <ROILevelQPList>
          <ROILevelQP Level="1" QP="3" /><ROILevelQP Level="2" QP="6" />
          <ROILevelQP Level="3" QP="9" />
        </ROILevelQPList>
      </ROIAbility>
      <BaseStreamList>{base-streams}</BaseStreamList>
      <SVCStreamAbilityList>
        <SVCStreamAbility StreamId="1" SourceStreamId="1" Divisor="2,4" />
      </SVCStreamAbilityList>
    </VideoAbilityParam>
  </VideoAbilityParamList>
</VideoAbility>)";

// ---------------------------------------------------------------------------------- of each stream

constexpr const char* BaseStreamText = R"(
<BaseStream StreamID="{stream}">
  <VideoEncoderParamList>
    <VideoEncoderParam VideoEncoderType="1" EncodeTypeName="H.264" EncodeLevelList="1,2,3">
      <VideoEncoderParamItem>
        <VideoEncoderParamItem ResolutionId="1" Name="{width}x{height}" Width="{width}"
            Hight="{height}" MaxFrameRate="30" MinFrameRate="1" BitRateTypeList="1,2"
            MaxBitRate="16384" MinBitRate="32" MaxQuality="9" MinQuality="1"
            MaxIFrameInterval="250" MinIFrameInterval="1" />
        <VideoEncoderParamItem ResolutionId="2" Name="352x288" Width="352" Hight="288"
            MaxFrameRate="30" MinFrameRate="1" BitRateTypeList="1,2" MaxBitRate="2048"
            MinBitRate="32" MaxQuality="9" MinQuality="1" MaxIFrameInterval="250"
            MinIFrameInterval="1" />
      </VideoEncoderParamItem>
    </VideoEncoderParam>
    <VideoEncoderParam VideoEncoderType="2" EncodeTypeName="H.265" EncodeLevelList="1,2">
      <VideoEncoderParamItem>
        <VideoEncoderParamItem ResolutionId="1" Name="{width}x{height}" Width="{width}"
            Hight="{height}" MaxFrameRate="30" MinFrameRate="1" BitRateTypeList="1,2"
            MaxBitRate="8192" MinBitRate="32" MaxQuality="9" MinQuality="1"
            MaxIFrameInterval="250" MinIFrameInterval="1" />
      </VideoEncoderParamItem>
    </VideoEncoderParam>
  </VideoEncoderParamList>
</BaseStream>)";

constexpr const char* StreamText = R"(
<AVStreamParam ChannelId="{channel}" StreamId="{stream}" StreamName="{stream-name}"
    VideoHeight="{height}" VideoWidth="{width}" FrameRate="25" BitRateType="1"
    BitRate="{bit-rate}" Quality="6" IFrameInterval="50" IFrameIntervalUnit="1"
    VideoEncoderType="1" VideoEncodeLevel="2" AudioEncoderType="1" />)";

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

// ------------------------------------------------------------------------------ from text to state

using Values = std::vector<std::pair<std::string, std::string>>;

std::string escaped(const std::string& strValue) {
    std::string strText;
    for (const char nLetter : strValue) {
        switch (nLetter) {
            case '&':
                strText += "&amp;";
                break;
            case '<':
                strText += "&lt;";
                break;
            case '"':
                strText += "&quot;";
                break;
            default:
                strText += nLetter;
        }
    }
    return strText;
}

std::string filled(std::string strText, const Values& vecValues) {
    for (const auto& [strName, strValue] : vecValues) {
        const std::string strBraced = "{" + strName + "}";
        for (std::size_t nAt = strText.find(strBraced); nAt != std::string::npos;
             nAt = strText.find(strBraced, nAt + strValue.size())) {
            strText.replace(nAt, strBraced.size(), strValue);
        }
    }
    return strText;
}

Records recordsOf(const std::string& strText) {
    const std::string strDocument = "<Factory>" + strText + "</Factory>";
    CommandBuffer objBody;
    Records vecRecords;
    const bool bRead = objBody.allocate(strDocument.size() + 1) &&
                       objBody.append(reinterpret_cast<const std::uint8_t*>(strDocument.data()),
                                      static_cast<std::uint32_t>(strDocument.size())) &&
                       SDKNormalXmlBodyParser().parseCommandBody(objBody, vecRecords);
    if (!bRead) {
        throw std::logic_error("the factory state of the virtual device does not parse");
    }
    return vecRecords;
}

template <class T>
T single(const Records& vecRecords) {
    const T* pRecord = findRecord<T>(vecRecords);
    if (!pRecord) {
        throw std::logic_error("the factory state of the virtual device lacks a record");
    }
    return *pRecord;
}

template <class T>
std::vector<T> listOf(const Records& vecRecords) {
    const std::vector<T>* pList = findList<T>(vecRecords);
    if (!pList) {
        throw std::logic_error("the factory state of the virtual device lacks a list");
    }
    return *pList;
}

Values deviceValues(const DeviceOptions& options) {
    const bool bIsIPv6 = options.strBindAddress.find(':') != std::string::npos;
    return {{"id", escaped(options.strDeviceId)},
            {"ip", escaped(options.strBindAddress)},
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

void addDevice(const DeviceOptions& options, DeviceState& state) {
    const char* szKind = options.nKind == DeviceKind::NVR ? RecorderText : CameraText;
    const Records vecRecords = recordsOf(filled(
        std::string(szKind) + CommonText + TimeZoneText + LanguageText, deviceValues(options)));
    state.objHardware = single<HardwareCapability>(vecRecords);
    state.objSoftware = single<SoftwareCapability>(vecRecords);
    state.objLanguages = single<LanguageAbility>(vecRecords);
    state.objOSDAbility = single<OSDAbility>(vecRecords);
    state.objAudio = single<AudioExAbility>(vecRecords);
    state.objPTZ = single<PTZAbilityParam>(vecRecords);
    state.objNetworkCards = single<NetworkAbility>(vecRecords);
    state.objMotion = single<MotionDetectionAbility>(vecRecords);
    state.objBlind = single<BlindAbility>(vecRecords);
    state.objSensor = single<SensorAbility>(vecRecords);
    state.objDisks = single<DiskAbility>(vecRecords);
    state.objUART = single<ExternUARTAbility>(vecRecords);
    state.objSummary = single<DeviceSummaryInfo>(vecRecords);
    state.vecHostNetworks = listOf<HostNetwork>(vecRecords);
    state.objPorts = single<DevicePort>(vecRecords);
    state.objNTP = single<NTPParam>(vecRecords);
    state.objSecurity = single<ProtocolSecurityParam>(vecRecords);
    state.vecTimeZoneDefaults = listOf<TimeZoneParam>(vecRecords);
    state.objTimeZone = state.vecTimeZoneDefaults.front();
    for (const char* szNames : TimeZoneNameTexts) {
        state.vecTimeZones.push_back(single<TimeZoneAbility>(recordsOf(szNames)));
    }
}

void addChannel(const DeviceOptions& options, int nChannel, DeviceState& state,
                std::vector<VideoAbilityParam>& vecVideo) {
    std::string strBaseStreams;
    for (int nStream = 1; nStream <= options.nStreams; ++nStream) {
        const Values vecValues = streamValues(nChannel, nStream);
        strBaseStreams += filled(BaseStreamText, vecValues);
        state.vecStreams.push_back(single<AVStreamParam>(recordsOf(filled(StreamText, vecValues))));
    }
    Values vecValues = deviceValues(options);
    vecValues.emplace_back("channel", std::to_string(nChannel));
    vecValues.emplace_back("base-streams", strBaseStreams);
    const Records vecRecords =
        recordsOf(filled(std::string(ChannelText) + VideoAbilityText, vecValues));
    state.vecChannels.push_back(single<ChannelInfo>(vecRecords));
    state.vecOSD.push_back(single<OSDUserParam>(vecRecords));
    vecVideo.push_back(single<VideoAbility>(vecRecords).getVideoAbilityParamList().front());
}

}  // namespace

DeviceState factoryState(const DeviceOptions& options) {
    DeviceState objState;
    objState.strPassword = options.strPassword;
    addDevice(options, objState);
    std::vector<VideoAbilityParam> vecVideo;
    for (int nChannel = 1; nChannel <= options.nChannels; ++nChannel) {
        addChannel(options, nChannel, objState, vecVideo);
    }
    objState.objVideo.setVideoAbilityParamList(vecVideo);
    return objState;
}
