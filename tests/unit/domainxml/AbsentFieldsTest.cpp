// What each absent attribute and child does to the record, and the line that tells of it.
#include <gtest/gtest.h>
#include <tinyxml.h>

#include <cctype>
#include <map>
#include <regex>
#include <string>
#include <utility>

#include "Product/Technic/LogFilter.h"
#include "domainxml/MappingWords.h"
#include "unit/domainxml/MappedRecord.h"

using namespace fleetkit;

namespace {

// ---- the words, written down by hand

// {class} and {tag} stand for the field, {Tag} for its tag with a capital, {element} and {parent}
// for where it is, {value} for what it is left with. A field that is not here is told in the
// standard line.
struct Words {
    const char* szClasses;
    const char* szTags;
    const char* szLine;
    const char* szFallback = nullptr;
};

constexpr const char* AnyTag = "";
constexpr const char* Plain = "getProperty get {tag} failed \n";
constexpr const char* Library = "LibCommon get {Tag} Failed! Set Default Value {value} \n";
constexpr const char* Ability =
    "IntelligenceAnalyseAbilityXml Failed! get {Tag} of {element} Node In {parent} Node failed! "
    "Default {value}! \n";
constexpr const char* Region =
    "IntelligenceAnalyseAbilityXml::getRegionParam get {Tag} of Region Node In {parent} Node "
    "Failed! Default {value}! \n";

const Words FieldWords[] = {
    {"EtOperatorType", "CameraID", "getProperty get nCameraID ={value} failed \n"},
    {"EtOperatorType", "PTZID", "getProperty get nPTZID = {value}  failed \n"},
    {"NVRDeviceAbility", "DoubleVOFlag", "getProperty get DoubleVoFlag failed \n"},
    {"FisheyeVideoLayoutSupport", "width height", "getProperty get m_n{tag} failed \n"},
    {"ThermalAbility", "IsThermal", "=================getProperty get IsThermal failed \n"},
    {"AudioInterphoneConfigure", "DoubleAudioFlag", "getProperty get b{tag} failed \n"},
    {"RecordChannelPlayback", "BeginTime EndTime",
     "RecordChannelPlaybackXml::parseDomainXmlNode get nn{tag} failed \n"},
    {"P2PParam", "IsOpenP2P", "P2PParamXml::parseDomainXmlNode get b{tag} failed \n"},
    {"SNMPSecurityAbility", "SupportSecurityLevel SupportSecurityLevelName",
     "SNMPSecurityAbilityXml::parseDomainXmlNode get n{tag} failed \n"},
    {"HCNTQueryCondition HCNTItem", "Type Time",
     "HCNTItemXml::parseDomainXmlNode get nTime failed \n"},
    {"AdvancedAbility RealSizeAbility", "enable",
     "AbnormalSpeedAbilityXml::parseDomainXmlNode get Enable failed \n"},
    {"IntelligenceLibInfo", "StreamID", "{file}{line} getProperty get MaxBlindAreaNum failed \n"},
    {"LibCommonAbility", "ID", "LibCommon get LibId Failed! Set Default Value -1 \n", "-1"},
    {"LibCommonAbility", "enable", Library, "false"},
    {"LibResolution", "videoWidth", Library, "320"},
    {"LibResolution", "videoHeight", Library, "240"},
    {"LibCommon", "totalAnalyseRegionNum MaxEnableFunsNum", Library, "0"},
    {"AbilityFlag AbilityRange AbilityFloatRange", "enable", Ability, "false"},
    {"AbilityRange AbilityFloatRange", "min max", Ability, "0"},
    {"AbilityRegion", "enable", Region, "false"},
    {"AbilityRegion", "edgeNum", Region, "0"},
    {"AbilityRegion", "maxRegionNum",
     "IntelligenceAnalyseAbilityXml::getRegionParam get EdgeNum of Region Node In {parent} Node "
     "Failed! Default 0! \n",
     "0"},
    {"HardwareCapability", "WiFiEnable POEEnable IREnable PIREnable BNCEnable InternalPTZEnable",
     Plain},
    {"PrivilegeUser", "UserName Password GroupName LockFlag MultiLoginFlag Desc", Plain},
    {"EtPTZOperation NVRDeviceAbility CanvasProper FisheyeVideoLayoutSupport GroupId "
     "UpdateSoftwareDeviceInfo FileAttribute UpdateSoftware StartMapPort BackupSettingParameter "
     "Privilege PrivilegeGroup UserParamEvent TranspondServiceParam",
     AnyTag, Plain},
};

// The children that are told of in other words than the standard ones.
const std::map<std::string, std::string> ChildWords = {
    {"NVRDeviceAbility.MonitorTypeAbility",
     "getConfigNode NODE_MONITOR_TYPE_ABILITY failed\n"
     "parseDomainXmlNode objMonitorTypeAbilityList failed\n"},
    {"PIRAlarmEvent.PIRAlarmSourceParam", "getConfigNode NODE_PIR_ALARM_SOURCE_PARAM failed\n"},
    {"PIRAlarmEvent.RecordActionParamList",
     "getConfigNode NODE_RECORD_ACTION_PARAM_LIST failed\n"
     "parseDomainXmlNode objAlarmRecordActionList failed\n"},
    {"PIRAlarmEvent.PTZActionParamList",
     "getConfigNode NODE_ALARM_PTZ_ACTION_LIST failed\n"
     "parseDomainXmlNode objAlarmPTZActionList failed\n"},
    {"PIRAlarmEvent.AlarmLinkageParamList",
     "getConfigNode NODE_ALARM_OVERLAY_ACTION_LIST failed\n"
     "parseDomainXmlNode objAlarmOverlayActionList failed\n"},
    {"IntelligenceLibInfo.LIB",
     "IntelligenceAnalyseAbilityXml::parseLibCommonNode get LibCommonAbilityList Failed! Node "
     "List isn't exist! \n"},
};

// Whether a list of words, parted by blanks, has this one.
bool hasWord(const std::string& strWords, const std::string& strWord) {
    return (" " + strWords + " ").find(" " + strWord + " ") != std::string::npos;
}

Words wordsOf(const std::string& strClass, const std::string& strTag) {
    for (const Words& words : FieldWords) {
        if (hasWord(words.szClasses, strClass) &&
            (words.szTags == AnyTag || hasWord(words.szTags, strTag))) {
            return words;
        }
    }
    // An ability's own flag has a capital in the standard line.
    const bool bAbility = strClass.ends_with("Ability") && strTag == "enable";
    return {"", "",
            bAbility ? "{class}Xml::parseDomainXmlNode get {Tag} failed \n"
                     : "{class}Xml::parseDomainXmlNode get {tag} failed \n"};
}

// These tell their lines to the log, in its frame.
std::string asPrinted(const std::string& strClass, const std::string& strLines) {
    return hasWord("PIRAlarmEvent UpdateSoftware UpdateSoftwareDeviceInfo", strClass)
               ? std::regex_replace(strLines, std::regex("[^\n]+\n"),
                                    "[" + strClass + "Xml parseDomainXmlNode {line}] $&")
               : strLines;
}

// What was printed, with marks for places in the source, and without the traces of the one mapper
// that always prints some.
std::string seen(std::string strPrinted) {
    static const std::pair<std::regex, const char*> Marks[] = {
        {std::regex(R"(( parseDomainXmlNode )\d+\])"), "$1{line}]"},
        {std::regex(R"(MappingWords\.cpp\d+)"), "{file}{line}"},
        {std::regex(R"(.*###   EtPTZOperationXml    ###.*\n|getProperty get n\w+ =-?\d+  \n)"),
         ""}};
    for (const auto& [pattern, szMark] : Marks) {
        strPrinted = std::regex_replace(strPrinted, pattern, szMark);
    }
    return strPrinted;
}

// ---- where the fields of a record stand

struct Place {
    std::vector<std::string> vecPath;  // tags of the elements around it, the record's first
    const RecordDescriptor* pOwner;
    const FieldDescriptor* pField;
    bool bUnread;

    bool isTop() const { return vecPath.size() == 1; }
    bool isAttribute() const {
        const FieldKind nKind = pField->nKind;
        return nKind <= FieldKind::String || nKind == FieldKind::JoinedInts ||
               nKind == FieldKind::JoinedRecords;
    }
    bool isBareList() const {
        return pField->nKind == FieldKind::ElementList && pField->szItem == nullptr;
    }
    std::string name() const { return std::string(pOwner->szClass) + "." + pField->szTag; }
};

// The fields of a record and of the inline elements in it, in wire order.
void collectPlaces(const RecordDescriptor& descriptor, const std::vector<std::string>& vecPath,
                   std::vector<Place>& vecPlaces, const std::string& strUnread = "") {
    if (descriptor.base != nullptr) {
        collectPlaces(descriptor.base(), vecPath, vecPlaces);
    }
    for (const FieldDescriptor& field : descriptor) {
        if (field.has(ReadOnly)) {
            continue;
        }
        const bool bUnread = field.has(WriteOnly) || strUnread == field.szTag;
        vecPlaces.push_back({vecPath, &descriptor, &field, bUnread});
        if (field.nKind == FieldKind::Element || field.nKind == FieldKind::ElementList) {
            std::vector<std::string> vecInside = vecPath;
            if (field.nKind == FieldKind::ElementList && field.szItem != nullptr) {
                vecInside.emplace_back(field.szItem);
            }
            vecInside.emplace_back(field.szTag);
            collectPlaces(field.nested(), vecInside, vecPlaces,
                          field.szUnread != nullptr ? field.szUnread : "");
        }
    }
}

class Tree {
public:
    explicit Tree(const std::string& strText) { m_document.Parse(strText.c_str()); }

    TiXmlElement* root() { return m_document.RootElement(); }
    TiXmlElement* around(const Place& place) {
        TiXmlElement* pElement = root();
        for (std::size_t i = 1; i < place.vecPath.size(); ++i) {
            pElement = pElement->FirstChildElement(place.vecPath[i].c_str());
        }
        return pElement;
    }

private:
    TiXmlDocument m_document;
};

// ---- the tests

// Reads records with one thing taken away, against what they held before.
class AbsentFields : public testing::Test {
protected:
    void SetUp() override { setLogFilter(LogLevel::Failure); }
    void TearDown() override { setLogFilter(0); }

    void start(const RecordDescriptor& descriptor) {
        m_pDescriptor = &descriptor;
        m_strFull = MappedRecord::filled(descriptor).text();
        // Something that its own text gives again.
        m_strOld = read(read(MappedRecord::filled(descriptor, 5000).text()).text()).text();
        m_vecPlaces.clear();
        collectPlaces(descriptor, {descriptor.szClass}, m_vecPlaces);
    }

    MappedRecord read(const std::string& strText) const {
        MappedRecord record(*m_pDescriptor);
        record.read(strText);
        return record;
    }
    MappedRecord old() const { return read(m_strOld); }
    MappedRecord oldAfter(Tree document) const {
        MappedRecord record = old();
        record.read(XmlCursor(document.root()));
        return record;
    }

    static std::string line(const Place& place, const std::string& strValue) {
        const std::string strClass = place.pOwner->szClass;
        const std::string strTag = place.pField->szTag;
        const std::string strCapital(1, static_cast<char>(std::toupper(strTag.front())));
        const std::string strParent = place.isTop() ? "" : *(place.vecPath.end() - 2);
        std::string strLine = wordsOf(strClass, strTag).szLine;
        for (const auto& [szMark, strText] :
             {std::pair<const char*, std::string>{"\\{class\\}", strClass},
              {"\\{tag\\}", strTag},
              {"\\{Tag\\}", strCapital + strTag.substr(1)},
              {"\\{element\\}", place.vecPath.back()},
              {"\\{parent\\}", strParent},
              {"\\{value\\}", strValue}}) {
            strLine = std::regex_replace(strLine, std::regex(szMark), strText);
        }
        return asPrinted(strClass, strLine);
    }

    // The two lines of a list, the words of an element, or nothing.
    std::string childLines(const Place& place) const {
        const FieldKind nKind = place.pField->nKind;
        const std::string strTag = place.pField->szTag;
        const std::string strPlace = strTag + " Node In " + m_pDescriptor->szClass + " Node ";
        const std::string strClass =
            nKind == FieldKind::Element ? place.pField->nested().szClass : "";
        const auto found = ChildWords.find(place.name());
        std::string strLines;
        if (found != ChildWords.end()) {
            strLines = found->second;
        } else if (nKind == FieldKind::RecordList || nKind == FieldKind::IntList ||
                   nKind == FieldKind::StringList) {
            strLines = "getConfigNode NODE_" + MappingWords::nodeName(strTag) +
                       " failed\nparseDomainXmlNode obj" + strTag + " failed\n";
        } else if (strClass == "AbilityRegion") {
            strLines =
                "IntelligenceAnalyseAbilityXml::getRegionParam get " + strPlace + "Failed! \n";
        } else if (strClass.find("Ability") != std::string::npos) {
            strLines = "IntelligenceAnalyseAbilityXml Failed! get " + strPlace +
                       "failed! can not find this node! \n";
        }
        return asPrinted(place.pOwner->szClass, strLines);
    }

    // Takes an attribute away, and gives it the value in the other document that its absence stands
    // for. Returns the line that tells of it.
    std::string removeAttribute(const Place& place, Tree& document, Tree& missed) const {
        const FieldDescriptor& field = *place.pField;
        document.around(place)->RemoveAttribute(field.szTag);
        const bool bText = field.nKind >= FieldKind::String;
        std::string strValue = field.nKind == FieldKind::Bool ? "false" : bText ? "" : "0";
        if (field.nPresence == Presence::Kept || field.nPresence == Presence::Logged) {
            strValue = Tree(m_strOld).around(place)->Attribute(field.szTag);
        } else if (field.nPresence == Presence::Fallback) {
            strValue = wordsOf(place.pOwner->szClass, field.szTag).szFallback;
        }
        missed.around(place)->SetAttribute(field.szTag, strValue.c_str());
        const bool bSilent =
            field.nPresence == Presence::Zeroed || field.nPresence == Presence::Kept;
        return bSilent || place.bUnread ? "" : line(place, strValue);
    }

    // The same for a child: a record is missed as the one that was held, anything else as one that
    // came empty.
    std::string removeChild(const Place& place, Tree& document, Tree& missed) const {
        const FieldDescriptor& field = *place.pField;
        const bool bUnder = field.nKind == FieldKind::ElementList && field.szItem != nullptr;
        const char* szTag = bUnder ? field.szItem : field.szTag;
        for (Tree* pTree : {&document, &missed}) {
            while (TiXmlElement* pChild = pTree->root()->FirstChildElement(szTag)) {
                pTree->root()->RemoveChild(pChild);
            }
        }
        if (field.nKind == FieldKind::Record) {
            missed.root()->InsertEndChild(*Tree(m_strOld).root()->FirstChildElement(szTag));
        } else if (!place.isBareList()) {
            missed.root()->InsertEndChild(TiXmlElement(szTag));
        } else {
            EXPECT_EQ(oldAfter(missed).text().find("\n\t<" + std::string(szTag)),
                      std::string::npos);
        }
        const std::string strLines = childLines(place);
        return strLines.empty() && field.nKind == FieldKind::Element
                   ? seen(old().read(XmlCursor(missed.root())))
                   : strLines;
    }

    // Reading `document` is like reading `missed`, but for the lines. A required field ends the
    // parse: what stands before it is read, the rest is as it was.
    void remove(const Place& place) const {
        Tree document(m_strFull);
        Tree missed(m_strFull);
        const std::string strLines = place.isAttribute() ? removeAttribute(place, document, missed)
                                                         : removeChild(place, document, missed);
        const bool bStops = place.pField->nPresence == Presence::Required &&
                            (place.isAttribute() || place.pField->nKind == FieldKind::Record);
        MappedRecord target = old();
        EXPECT_EQ(seen(target.read(XmlCursor(document.root()), !bStops)), strLines);
        const MappedRecord before = old();
        const MappedRecord after = oldAfter(missed);
        bool bBehind = false;
        for (const Place& other : m_vecPlaces) {
            bBehind = bBehind || (bStops && other.pField == place.pField);
            const MappedRecord& expected = bBehind ? before : after;
            EXPECT_TRUE(!other.isTop() || equalFields(*other.pField, target.get(), expected.get()))
                << other.name() << target.text() << expected.text();
        }
    }

    const RecordDescriptor* m_pDescriptor = nullptr;
    std::string m_strFull;  // what a device sends
    std::string m_strOld;   // what the record held before
    std::vector<Place> m_vecPlaces;
};

TEST_F(AbsentFields, EachByItsMark) {
    std::map<Presence, int> mapCounts;
    int nChildren = 0;
    for (const RecordDescriptor* pDescriptor : allRecords()) {
        start(*pDescriptor);
        for (const Place& place : m_vecPlaces) {
            SCOPED_TRACE(std::string(pDescriptor->szClass) + ": " + place.name());
            if (place.isAttribute()) {
                remove(place);
                mapCounts[place.pField->nPresence] += place.pOwner == pDescriptor ? 1 : 0;
            } else if (place.isTop() && !place.pField->has(BareValues) &&
                       place.pField->nKind != FieldKind::Block) {
                remove(place);
                ++nChildren;
            }
        }
    }
    EXPECT_EQ(mapCounts[Presence::Zeroed], 2034);
    EXPECT_EQ(mapCounts[Presence::Kept], 42);
    EXPECT_EQ(mapCounts[Presence::Logged], 157);
    EXPECT_EQ(mapCounts[Presence::Required], 164);
    EXPECT_EQ(nChildren, 593);
}

TEST_F(AbsentFields, TheWordsOfANodeName) {
    for (const auto& [szTag, szName] : {std::pair{"OSDInfoList", "OSD_INFO_LIST"},
                                        {"PTZPresetV2List", "PTZ_PRESET_V2_LIST"},
                                        {"RS485List", "RS485_LIST"},
                                        {"RS485OSDList", "RS485_OSD_LIST"},
                                        {"GPIOLEDList", "GPIOLED_LIST"}}) {
        EXPECT_EQ(MappingWords::nodeName(szTag), szName);
    }
}

TEST_F(AbsentFields, OneBadEntryEmptiesAListInARecordAndOnlyThat) {
    MappedRecord record = MappedRecord::filled(*findRecordDescriptor("HCNTQueryResult"));
    EXPECT_EQ(record.read("<R><HCNTItemList><A Time=\"1\" NumIn=\"2\" NumOut=\"3\"/>"
                          "<A NumIn=\"2\" NumOut=\"3\"/></HCNTItemList></R>"),
              "HCNTItemXml::parseDomainXmlNode get DeviceId failed \n"
              "HCNTItemXml::parseDomainXmlNode get DeviceIp failed \n"
              "HCNTItemXml::parseDomainXmlNode get CameraId failed \n"
              "HCNTItemXml::parseDomainXmlNode get nTime failed \n"
              "parseDomainXmlNode objHCNTItemList failed\n");
    EXPECT_EQ(record.text(), "<HCNTQueryResult>\n\t<HCNTItemList />\n</HCNTQueryResult>\n");
}

TEST_F(AbsentFields, OneBadEntryLeavesAContainerAsItWas) {
    const RecordDescriptor& descriptor = *findRecordDescriptor("EtMotionDetectionStreamReq");
    const auto pList = descriptor.access.makeContainer();
    void* pElements = descriptor.access.containerList(*pList);
    descriptor.access.listReset(pElements, 3);
    const XmlDocument document =
        XmlDocument::parse("<L><A CameraId=\"1\" ConsumerId=\"2\"/><A CameraId=\"1\"/></L>");
    captureOutput(
        [&] { EXPECT_FALSE(XmlMapping::readDomain(descriptor, document.root(), *pList)); });
    EXPECT_EQ(descriptor.access.listSize(pElements), 3U);
}

TEST_F(AbsentFields, ABadNestedRecordIsLeftOutAndTheRestRead) {
    MappedRecord record(*findRecordDescriptor("RecordPlaybackParam"));
    EXPECT_EQ(
        record.read("<R CommandType='1' DisplayId='2' WindowId='3' ChannelId='4' DeviceID='d' "
                    "Rate='2'><LayoutVDRectInfo DisplayId='7'/></R>"),
        "LayoutVDRectInfoXml::parseDomainXmlNode get WindowId failed \n");
    EXPECT_NE(record.text().find("Rate=\"2.000000\""), std::string::npos);
    EXPECT_NE(record.text().find("<LayoutVDRectInfo DisplayId=\"0\""), std::string::npos);
}

}  // namespace
