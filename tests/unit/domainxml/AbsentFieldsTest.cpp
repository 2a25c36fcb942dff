// What each absent attribute and child does to the record, and the line that tells of it.
#include <gtest/gtest.h>
#include <tinyxml.h>

#include <cctype>
#include <map>
#include <sstream>
#include <string>

#include "Product/Technic/LogFilter.h"
#include "domainxml/MappingWords.h"
#include "unit/domainxml/MappedRecord.h"

namespace {

// ---- the words, written down by hand

// {tag}, {element} and {parent} stand for the field and where it is; {value} for what it is left
// with. A field that is not here is told in the standard line.
struct Words {
    const char* szClass;
    const char* szTags;
    const char* szLine;
    const char* szFallback = nullptr;
};

constexpr const char* Plain = "getProperty get {tag} failed \n";
constexpr const char* AbilityStart = "IntelligenceAnalyseAbilityXml Failed! get ";
constexpr const char* RegionStart = "IntelligenceAnalyseAbilityXml::getRegionParam get ";
constexpr const char* InNode = " of {element} Node In {parent} Node failed! Default ";

const Words FieldWords[] = {
    {"EtPTZOperation", "CameraId PTZId PTZOperation Name", Plain},
    {"EtOperatorType", "CameraID", "getProperty get nCameraID ={value} failed \n"},
    {"EtOperatorType", "PTZID", "getProperty get nPTZID = {value}  failed \n"},
    {"NVRDeviceAbility",
     "MaxChannelNumber DiskNumber MaxDispatchNumber MaxDecodeAbility MaxBitRate "
     "MaxPlaybackChannelNumber AlarmInDeviceNumber AlarmOutputDeviceNumber InterPhoneFlag "
     "PlaybackSpeed RS232Number RS485Number",
     Plain},
    {"NVRDeviceAbility", "DoubleVOFlag", "getProperty get DoubleVoFlag failed \n"},
    {"HardwareCapability", "WiFiEnable POEEnable IREnable PIREnable BNCEnable InternalPTZEnable",
     Plain},
    {"CanvasProper", "FrontWidth FrontHeight AlignMode AreaID", Plain},
    {"RecordChannelPlayback", "BeginTime EndTime",
     "RecordChannelPlaybackXml::parseDomainXmlNode get nn{tag} failed \n"},
    {"IntelligenceLibInfo", "StreamID", "{file}{line} getProperty get MaxBlindAreaNum failed \n"},
    {"LibCommonAbility", "ID", "LibCommon get LibId Failed! Set Default Value -1 \n", "-1"},
    {"LibCommonAbility", "enable", "LibCommon get Enable Failed! Set Default Value false \n",
     "false"},
    {"LibResolution", "videoWidth", "LibCommon get VideoWidth Failed! Set Default Value 320 \n",
     "320"},
    {"LibResolution", "videoHeight", "LibCommon get VideoHeight Failed! Set Default Value 240 \n",
     "240"},
    {"LibCommon", "totalAnalyseRegionNum",
     "LibCommon get TotalAnalyseRegionNum Failed! Set Default Value 0 \n", "0"},
    {"LibCommon", "MaxEnableFunsNum",
     "LibCommon get MaxEnableFunsNum Failed! Set Default Value 0 \n", "0"},
    {"AdvancedAbility", "enable",
     "AbnormalSpeedAbilityXml::parseDomainXmlNode get Enable failed \n"},
    {"RealSizeAbility", "enable",
     "AbnormalSpeedAbilityXml::parseDomainXmlNode get Enable failed \n"},
    {"HCNTQueryCondition", "Type", "HCNTItemXml::parseDomainXmlNode get nTime failed \n"},
    {"HCNTItem", "Time", "HCNTItemXml::parseDomainXmlNode get nTime failed \n"},
    {"FisheyeVideoLayoutSupport", "SensorSize", Plain},
    {"FisheyeVideoLayoutSupport", "width height", "getProperty get m_n{tag} failed \n"},
    {"ThermalAbility", "IsThermal", "=================getProperty get IsThermal failed \n"},
    {"GroupId", "Id", Plain},
    {"UpdateSoftwareDeviceInfo",
     "UpdateSoftwareDeviceName UpdateSoftwareDeviceType UpdateSoftwareDeviceDiskID "
     "UpdateSoftwareTotalSpace UpdateSoftwareUsedSpace",
     Plain},
    {"FileAttribute", "FileName FileType FileSize", Plain},
    {"UpdateSoftware", "FilePath Percent Status Flag", Plain},
    {"StartMapPort", "HttpStartMapPort MediaStartMapPort", Plain},
    {"BackupSettingParameter", "UsingDiskPath UsingDiskId", Plain},
    {"Privilege", "Privilege Desc HasDeviceFlag AllDeviceFlag", Plain},
    {"PrivilegeGroup", "GroupName Desc SupGroupName", Plain},
    {"PrivilegeUser", "UserName Password GroupName LockFlag MultiLoginFlag Desc", Plain},
    {"P2PParam", "IsOpenP2P", "P2PParamXml::parseDomainXmlNode get b{tag} failed \n"},
    {"SNMPSecurityAbility", "SupportSecurityLevel SupportSecurityLevelName",
     "SNMPSecurityAbilityXml::parseDomainXmlNode get n{tag} failed \n"},
    {"UserParamEvent", "UserName EventId", Plain},
    {"TranspondServiceParam", "ChannelId Status", Plain},
    {"AudioInterphoneConfigure", "DoubleAudioFlag", "getProperty get b{tag} failed \n"},
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

// These tell their lines to the log.
bool usesLog(const std::string& strClass) {
    return strClass == "PIRAlarmEvent" || strClass == "UpdateSoftware" ||
           strClass == "UpdateSoftwareDeviceInfo";
}

bool endsWith(const std::string& strText, const std::string& strEnd) {
    return strText.size() >= strEnd.size() &&
           strText.compare(strText.size() - strEnd.size(), strEnd.size(), strEnd) == 0;
}

Words wordsOf(const std::string& strClass, const std::string& strTag) {
    static std::map<std::string, std::string> mapMade;  // texts put together here
    const auto made = [&](const std::string& strText) {
        return mapMade.emplace(strText, strText).first->second.c_str();
    };
    for (const Words& words : FieldWords) {
        std::istringstream tags(words.szTags);
        for (std::string strOne; tags >> strOne;) {
            if (words.szClass == strClass && strOne == strTag) {
                return words;
            }
        }
    }
    const bool bRange = strClass == "AbilityRange" || strClass == "AbilityFloatRange";
    if ((bRange || strClass == "AbilityFlag") && strTag != "unit") {
        const char* szName = strTag == "enable" ? "Enable" : strTag == "min" ? "Min" : "Max";
        const char* szZero = strTag == "enable"                ? "false"
                             : strClass == "AbilityFloatRange" ? "0.000000"
                                                               : "0";
        const std::string strShown = strTag == "enable" ? "false" : "0";
        return {"", "", made(std::string(AbilityStart) + szName + InNode + strShown + "! \n"),
                szZero};
    }
    if (strClass == "AbilityRegion") {
        const bool bFlag = strTag == "enable";
        return {"", "",
                made(std::string(RegionStart) + (bFlag ? "Enable" : "EdgeNum") +
                     " of Region Node In {parent} Node Failed! Default " + (bFlag ? "false" : "0") +
                     "! \n"),
                bFlag ? "false" : "0"};
    }
    // An ability's own flag has a capital in the standard line.
    const bool bAbility = endsWith(strClass, "Ability") && strTag == "enable";
    return {"", "",
            made(strClass + "Xml::parseDomainXmlNode get " + (bAbility ? "Enable" : strTag) +
                 " failed \n")};
}

std::string replaced(std::string strText, const std::string& strWhat, const std::string& strBy) {
    for (std::size_t nAt; (nAt = strText.find(strWhat)) != std::string::npos;) {
        strText.replace(nAt, strWhat.size(), strBy);
    }
    return strText;
}

// ---- where the attributes of a record stand

struct Leaf {
    std::vector<std::string> vecPath;  // tags of the inline elements around it
    const RecordDescriptor* pOwner;
    const FieldDescriptor* pField;
    bool bFresh = false;   // in a repeated element, which is made anew
    bool bUnread = false;  // the unit of a one-sided ability
};

bool isAttribute(const FieldDescriptor& field) {
    switch (field.nKind) {
        case FieldKind::Bool:
        case FieldKind::Int:
        case FieldKind::UnsignedShort:
        case FieldKind::Float:
        case FieldKind::Double:
        case FieldKind::String:
        case FieldKind::JoinedInts:
        case FieldKind::JoinedRecords:
            return !field.has(ReadOnly);
        default:
            return false;
    }
}

void collectLeaves(const RecordDescriptor& descriptor, Leaf around, std::vector<Leaf>& vecLeaves,
                   const char* szUnread = nullptr) {
    if (descriptor.base != nullptr) {
        collectLeaves(descriptor.base(), around, vecLeaves);
    }
    for (const FieldDescriptor& field : descriptor) {
        Leaf leaf = around;
        leaf.pOwner = &descriptor;
        leaf.pField = &field;
        if (isAttribute(field)) {
            leaf.bUnread = field.has(WriteOnly) ||
                           (szUnread != nullptr && std::string(szUnread) == field.szTag);
            vecLeaves.push_back(leaf);
        } else if (field.nKind == FieldKind::Element || field.nKind == FieldKind::ElementList) {
            leaf.bFresh = around.bFresh || field.nKind == FieldKind::ElementList;
            if (field.nKind == FieldKind::ElementList && field.szItem != nullptr) {
                leaf.vecPath.push_back(field.szItem);
            }
            leaf.vecPath.push_back(field.szTag);
            collectLeaves(field.nested(), leaf, vecLeaves, field.szUnread);
        }
    }
}

std::vector<Leaf> leavesOf(const RecordDescriptor& descriptor) {
    std::vector<Leaf> vecLeaves;
    collectLeaves(descriptor, {}, vecLeaves);
    return vecLeaves;
}

// ---- texts as trees

class Tree {
public:
    explicit Tree(const std::string& strText) { m_document.Parse(strText.c_str()); }

    TiXmlElement* root() { return m_document.RootElement(); }
    TiXmlElement* at(const std::vector<std::string>& vecPath) {
        TiXmlElement* pElement = root();
        for (const std::string& strTag : vecPath) {
            pElement = pElement->FirstChildElement(strTag.c_str());
        }
        return pElement;
    }
    std::string text() { return XmlCursor(root()).text(); }

private:
    TiXmlDocument m_document;
};

const char* zeroText(FieldKind nKind) {
    switch (nKind) {
        case FieldKind::Bool:
            return "false";
        case FieldKind::Int:
        case FieldKind::UnsignedShort:
            return "0";
        case FieldKind::Float:
        case FieldKind::Double:
            return "0.000000";
        default:
            return "";
    }
}

std::vector<std::string> linesOf(const std::string& strText) {
    std::vector<std::string> vecLines;
    std::istringstream text(strText);
    for (std::string strLine; std::getline(text, strLine);) {
        vecLines.push_back(strLine + "\n");
    }
    return vecLines;
}

// What was printed, without the traces of the one mapper that always prints some, and with marks
// for the frame of a log line and for the place that a line names.
std::string seen(const std::string& strPrinted) {
    std::string strSeen;
    for (const std::string& strLine : linesOf(strPrinted)) {
        const bool bValue = strLine.rfind("getProperty get n", 0) == 0 && endsWith(strLine, "  \n");
        if (bValue || strLine.find("###   EtPTZOperationXml    ###") != std::string::npos) {
            continue;
        }
        const std::size_t nFrame = strLine.find("] ");
        const std::size_t nPlace = strLine.find(' ');
        if (strLine.find("Xml parseDomainXmlNode ") < nFrame && strLine[0] == '[') {
            strSeen += "[log]" + strLine.substr(nFrame + 2);
        } else if (strLine.rfind("MappingWords.cpp", 0) == 0) {
            strSeen += "{file}{line}" + strLine.substr(nPlace);
        } else {
            strSeen += strLine;
        }
    }
    return strSeen;
}

// "OSD_INFO_LIST" for "OSDInfoList": a word begins where a small letter or digit ends, and with the
// last capital before small letters.
std::string nodeName(const std::string& strTag) {
    std::string strName;
    for (std::size_t i = 0; i < strTag.size(); ++i) {
        const auto isSmall = [&](std::size_t n) {
            return n < strTag.size() && std::islower(static_cast<unsigned char>(strTag[n])) != 0;
        };
        const bool bCapital = std::isupper(static_cast<unsigned char>(strTag[i])) != 0;
        const bool bAfterCapital =
            i > 0 && std::isupper(static_cast<unsigned char>(strTag[i - 1])) != 0;
        if (i > 0 && bCapital && (!bAfterCapital || isSmall(i + 1))) {
            strName += '_';
        }
        strName += static_cast<char>(std::toupper(static_cast<unsigned char>(strTag[i])));
    }
    return strName;
}

// Reads records with one thing taken away, against what they held before.
class AbsentFields : public testing::Test {
protected:
    void SetUp() override { setLogFilter(LogLevel::Failure); }
    void TearDown() override { setLogFilter(0); }

    void start(const RecordDescriptor& descriptor) {
        m_pDescriptor = &descriptor;
        m_strFull = MappedRecord::filled(descriptor).text();
        m_strOld = old().text();
        MappedRecord all = old();
        all.read(m_strFull);
        m_strAll = all.text();
    }

    MappedRecord old() const { return MappedRecord::filled(*m_pDescriptor, 5000, true); }

    std::string line(const Leaf& leaf, const std::string& strValue) const {
        std::string strLine = wordsOf(leaf.pOwner->szClass, leaf.pField->szTag).szLine;
        const auto& vecPath = leaf.vecPath;
        const std::size_t nDepth = vecPath.size();
        strLine = replaced(strLine, "{tag}", leaf.pField->szTag);
        strLine = replaced(strLine, "{element}", nDepth > 0 ? vecPath[nDepth - 1] : "");
        strLine = replaced(strLine, "{parent}",
                           nDepth > 1 ? vecPath[nDepth - 2] : m_pDescriptor->szClass);
        strLine = replaced(strLine, "{value}", strValue);
        return (usesLog(leaf.pOwner->szClass) ? "[log]" : "") + strLine;
    }

    // Puts what an absent attribute leaves into the expected tree; gives the expected line.
    std::string miss(const Leaf& leaf, Tree& expected) {
        if (leaf.bUnread) {
            return "";
        }
        const FieldDescriptor& field = *leaf.pField;
        TiXmlElement* pElement = expected.at(leaf.vecPath);
        const char* szTag = field.szReadInto != nullptr ? field.szReadInto : field.szTag;
        Tree old(m_strOld);
        const char* szOld = old.at(leaf.vecPath)->Attribute(szTag);
        std::string strNew = zeroText(field.nKind);
        std::string strLine;
        switch (field.nPresence) {
            case Presence::Zeroed:
                break;
            case Presence::Kept:
            case Presence::Logged:
                EXPECT_FALSE(leaf.bFresh);
                strNew = szOld;
                break;
            case Presence::Fallback:
                strNew = wordsOf(leaf.pOwner->szClass, field.szTag).szFallback;
                break;
            case Presence::Required:
                ADD_FAILURE() << "an inline element cannot end a parse";
                break;
        }
        if (field.nPresence == Presence::Logged || field.nPresence == Presence::Fallback) {
            strLine = line(leaf, strNew);
        }
        if (field.has(OmitEmpty) && strNew.empty()) {
            pElement->RemoveAttribute(szTag);
        } else {
            pElement->SetAttribute(szTag, strNew.c_str());
        }
        return strLine;
    }

    // A required field ends the parse: what stands before it is read, the rest is as it was.
    void expectStop(const Leaf& leaf, Tree& document) {
        MappedRecord target = old();
        const std::string strPrinted = target.read(XmlCursor(document.root()), false);
        EXPECT_EQ(seen(strPrinted), line(leaf, ""));
        MappedRecord all = old();
        all.read(m_strFull);
        EXPECT_EQ(m_pDescriptor->base, nullptr);
        RecordDescriptor before = *m_pDescriptor;
        before.nFieldCount = static_cast<std::size_t>(leaf.pField - before.pFields);
        RecordDescriptor rest = *m_pDescriptor;
        rest.pFields = leaf.pField;
        rest.nFieldCount -= before.nFieldCount;
        EXPECT_TRUE(equalRecords(before, target.get(), all.get()));
        EXPECT_TRUE(equalRecords(rest, target.get(), old().get()));
    }

    void expectOutcome(Tree& document, Tree& expected, const std::string& strLines) {
        MappedRecord target = old();
        const std::string strPrinted = target.read(XmlCursor(document.root()));
        EXPECT_EQ(seen(strPrinted), strLines);
        EXPECT_EQ(target.text(), expected.text());
    }

    void removeAttribute(const Leaf& leaf) {
        SCOPED_TRACE(std::string(m_pDescriptor->szClass) + ": " + leaf.pOwner->szClass + "." +
                     leaf.pField->szTag);
        const std::string strName = std::string(leaf.pOwner->szClass) + "." + leaf.pField->szTag;
        Tree document(m_strFull);
        document.at(leaf.vecPath)->RemoveAttribute(leaf.pField->szTag);
        if (leaf.pField->nPresence == Presence::Required && !leaf.bUnread) {
            expectStop(leaf, document);
            return;
        }
        Tree expected(m_strAll);
        std::string strLines;
        if (strName != "PTZPointParam.NightFocusValue") {  // PTZID comes behind it and wins
            strLines = miss(leaf, expected);
        }
        if (strName == "DetectionAreaV2.DataLength") {  // a text of no length is an empty block
            expected.root()->SetAttribute("Data", "");
        }
        expectOutcome(document, expected, strLines);
    }

    // The two lines of a list, the words of an element, or nothing.
    std::string childLines(const RecordDescriptor& owner, const FieldDescriptor& field) const {
        const auto found = ChildWords.find(std::string(owner.szClass) + "." + field.szTag);
        const bool bList = field.nKind == FieldKind::RecordList ||
                           field.nKind == FieldKind::IntList ||
                           field.nKind == FieldKind::StringList;
        std::string strLines;
        if (found != ChildWords.end()) {
            strLines = found->second;
        } else if (bList) {
            strLines = "getConfigNode NODE_" + nodeName(field.szTag) +
                       " failed\nparseDomainXmlNode obj" + field.szTag + " failed\n";
        } else if (field.nKind == FieldKind::Element) {
            const std::string strClass = field.nested().szClass;
            const std::string strPlace =
                std::string(field.szTag) + " Node In " + m_pDescriptor->szClass + " Node ";
            if (strClass == "AbilityRegion") {
                strLines = RegionStart + strPlace + "Failed! \n";
            } else if (endsWith(strClass, "Ability") || strClass.rfind("Ability", 0) == 0) {
                strLines = AbilityStart + strPlace + "failed! can not find this node! \n";
            }
        }
        if (!usesLog(owner.szClass)) {
            return strLines;
        }
        std::string strLogged;
        for (const std::string& strLine : linesOf(strLines)) {
            strLogged += "[log]" + strLine;
        }
        return strLogged;
    }

    void removeChild(const RecordDescriptor& owner, const FieldDescriptor& field) {
        SCOPED_TRACE(std::string(m_pDescriptor->szClass) + ": " + field.szTag);
        const char* szChild = field.nKind == FieldKind::ElementList && field.szItem != nullptr
                                  ? field.szItem
                                  : field.szTag;
        Tree document(m_strFull);
        Tree expected(m_strAll);
        while (TiXmlElement* pChild = document.root()->FirstChildElement(szChild)) {
            document.root()->RemoveChild(pChild);
        }
        std::string strLines = childLines(owner, field);
        TiXmlElement* pExpected = expected.root()->FirstChildElement(szChild);
        if (field.nKind == FieldKind::Record) {
            if (field.nPresence == Presence::Required) {
                MappedRecord target = old();
                EXPECT_EQ(target.read(XmlCursor(document.root()), false), "");
                return;
            }
            Tree old(m_strOld);
            expected.root()->ReplaceChild(pExpected, *old.root()->FirstChildElement(szChild));
        } else if (field.nKind == FieldKind::Element) {
            std::string strFieldLines;
            for (const Leaf& leaf : leavesOf(*m_pDescriptor)) {
                if (!leaf.vecPath.empty() && leaf.vecPath.front() == field.szTag) {
                    strFieldLines += miss(leaf, expected);
                }
            }
            strLines += strLines.empty() ? strFieldLines : "";
        } else if (field.nKind == FieldKind::ElementList && field.szItem == nullptr) {
            while (TiXmlElement* pOne = expected.root()->FirstChildElement(szChild)) {
                expected.root()->RemoveChild(pOne);
            }
        } else {
            pExpected->Clear();
        }
        expectOutcome(document, expected, strLines);
    }

    const RecordDescriptor* m_pDescriptor = nullptr;
    std::string m_strFull;  // what a device sends
    std::string m_strOld;   // what the record held before
    std::string m_strAll;   // what it holds when nothing is absent
};

TEST_F(AbsentFields, EachAttributeByItsMark) {
    std::map<Presence, int> mapCounts;
    for (const RecordDescriptor* pDescriptor : allRecords()) {
        start(*pDescriptor);
        for (const Leaf& leaf : leavesOf(*pDescriptor)) {
            removeAttribute(leaf);
            if (leaf.vecPath.empty() && leaf.pOwner == pDescriptor) {
                ++mapCounts[leaf.pField->nPresence];
            }
        }
    }
    EXPECT_EQ(mapCounts[Presence::Zeroed], 2034);
    EXPECT_EQ(mapCounts[Presence::Kept], 42);
    EXPECT_EQ(mapCounts[Presence::Logged], 157);
    EXPECT_EQ(mapCounts[Presence::Required], 164);
}

TEST_F(AbsentFields, EachChildByItsKind) {
    int nChildren = 0;
    for (const RecordDescriptor* pDescriptor : allRecords()) {
        start(*pDescriptor);
        for (const RecordDescriptor* p = pDescriptor; p; p = p->base ? &p->base() : nullptr) {
            for (const FieldDescriptor& field : *p) {
                if (!isAttribute(field) && !field.has(ReadOnly) && !field.has(BareValues) &&
                    field.nKind != FieldKind::Block) {
                    removeChild(*p, field);
                    ++nChildren;
                }
            }
        }
    }
    EXPECT_EQ(nChildren, 593);
}

TEST_F(AbsentFields, TheWordsOfANodeName) {
    for (const auto& [szTag, szName] : {std::pair{"OSDInfoList", "OSD_INFO_LIST"},
                                        {"PTZPresetV2List", "PTZ_PRESET_V2_LIST"},
                                        {"RS485List", "RS485_LIST"},
                                        {"GPIOLEDList", "GPIOLED_LIST"},
                                        {"AlarmLinkageParamList", "ALARM_LINKAGE_PARAM_LIST"}}) {
        EXPECT_EQ(MappingWords::nodeName(szTag), szName);
    }
}

TEST_F(AbsentFields, OneBadEntryEmptiesAListInARecordAndOnlyThat) {
    const RecordDescriptor& descriptor = *findRecordDescriptor("HCNTQueryResult");
    MappedRecord record = MappedRecord::filled(descriptor);
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
