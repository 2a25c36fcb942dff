// The table of misbehaviours, each as a change to the answer that was due.
#include "virtual-device/Misbehaviour.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <limits>
#include <memory>
#include <stdexcept>

#include "domain/DeviceName.h"
#include "domain/EtResult.h"
#include "domain/RecordDescriptor.h"
#include "protocol/CommandCatalogue.h"
#include "protocol/ProtocolType.h"
#include "virtual-device/Answer.h"

using namespace fleetkit;

namespace {

constexpr std::size_t ChecksumByte = 22;
constexpr std::size_t TerminatorByte = 23;

constexpr const char* Declaration = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n";
constexpr const char* GoodResult = "<Result Code=\"0\" />";

void repeat(std::string& strText, const char* szPiece, int nTimes) {
    for (int n = 0; n < nTimes; ++n) {
        strText += szPiece;
    }
}

std::string document(const std::string& strInner) {
    return Declaration + std::string("<Parameters Version=\"1\">") + strInner + "</Parameters>\n";
}

std::string deepDocument(int nLevels) {
    std::string strText;
    repeat(strText, "<A>", nLevels);
    repeat(strText, "</A>", nLevels);
    return document(GoodResult + strText);
}

std::string wideDocument(int nAttributes) {
    std::string strText = "<A ";
    for (int n = 0; n < nAttributes; ++n) {
        strText += "a" + std::to_string(n) + "=\"1\" ";
    }
    return document(GoodResult + strText + "/>");
}

std::string longDocument(int nRecords) {
    std::string strText;
    repeat(strText, GoodResult, nRecords);
    return document(strText);
}

std::string entityDocument() {
    return Declaration +
           std::string(
               "<!DOCTYPE a [<!ENTITY b \"bbbbbbbb\"><!ENTITY c \"&b;&b;&b;&b;\">]>\n"
               "<Parameters Version=\"1\"><Result Code=\"0\" /><DeviceName Name=\"&c;&c;\" />"
               "</Parameters>\n");
}

template <class Keep>
void keepRecords(Answer& answer, Keep keep) {
    DomainList vecKept;
    std::copy_if(answer.vecRecords.begin(), answer.vecRecords.end(), std::back_inserter(vecKept),
                 [&](const SafePointer<BaseDomain>& record) { return keep(*record); });
    answer.vecRecords.swap(vecKept);
}

bool isResult(const BaseDomain& record) {
    return record.getDomainId() == EtResult::DomainId;
}

void replaceResult(Answer& answer, int nCode) {
    keepRecords(answer, [](const BaseDomain& record) { return !isResult(record); });
    EtResult result;
    result.setCode(nCode);
    appendRecord(answer.vecRecords, result);
}

void emptyLists(Answer& answer) {
    DomainList vecRecords;
    for (const auto& record : answer.vecRecords) {
        bool bIsList = false;
        const std::uint32_t nId = effectiveDomainId(*record);
        checkDomainId(*record, nId, bIsList);
        vecRecords.push_back(
            bIsList ? wrapSafe<BaseDomain>(findRecordDescriptor(nId)->access.makeContainer())
                    : record);
    }
    answer.vecRecords.swap(vecRecords);
}

// Strays that the sequence alone tells from the answer.
void addStrays(Answer& answer, int nCount) {
    for (int n = 1; n <= nCount; ++n) {
        SDKCommandHeadInfo head = answer.head;
        head.setSequence(static_cast<std::uint16_t>(head.getSequence() - n));
        answer.vecStrays.push_back(head);
    }
}

constexpr int Lowest = std::numeric_limits<int>::min();
constexpr int Highest = std::numeric_limits<int>::max();
constexpr int MostPieces = 1000000;  // in one body

constexpr ValueRange NoValue;

constexpr ValueRange number(int nDefault, int nLeast, int nMost) {
    return {nDefault, nLeast, nMost};
}

constexpr MisbehaviourKind Kinds[] = {
    {"delay", "answers VALUE milliseconds late", number(1000, 0, 600000),
     [](Answer& a, int n) { a.nDelay = std::chrono::milliseconds(n); }},
    {"drop", "does not answer", NoValue, [](Answer& a, int) { a.bSilent = true; }},
    {"close", "closes the connection instead of answering", NoValue,
     [](Answer& a, int) { a.bSilent = a.bCloses = true; }},
    {"strays", "sends VALUE answers to other requests first", number(1, 1, 1000), addStrays},
    {"twice", "answers twice", NoValue, [](Answer& a, int) { a.bTwice = true; }},
    {"trickle", "sends the answer byte by byte, VALUE milliseconds apart", number(0, 0, 600000),
     [](Answer& a, int n) {
         a.bTrickles = true;
         a.nPace = std::chrono::milliseconds(n);
     }},
    {"wrong-session", "answers with a session number that is off by VALUE",
     number(1, Lowest, Highest),
     [](Answer& a, int n) {
         a.head.setSessionId(a.head.getSessionId() + static_cast<std::uint32_t>(n));
     }},
    {"wrong-sequence", "answers with a sequence number that is off by VALUE",
     number(1, -0xFFFF, 0xFFFF),
     [](Answer& a, int n) {
         a.head.setSequence(static_cast<std::uint16_t>(a.head.getSequence() + n));
     }},
    {"wrong-command", "answers with a command id that is off by VALUE", number(1, Lowest, Highest),
     [](Answer& a, int n) {
         a.head.setCommandID(a.head.getCommandID() + static_cast<std::uint32_t>(n));
     }},
    {"protocol-type", "names VALUE as the protocol type in the head",
     number(ProtocolType::Binary, 0, 0xFFFF),
     [](Answer& a, int n) { a.head.setProtocolType(static_cast<std::uint16_t>(n)); }},
    {"bad-magic", "sends a head that begins wrong", NoValue,
     [](Answer& a, int) { a.nDamagedByte = std::size_t{0}; }},
    {"bad-checksum", "sends a head with a wrong checksum", NoValue,
     [](Answer& a, int) { a.nDamagedByte = ChecksumByte; }},
    {"bad-terminator", "sends a head that ends wrong", NoValue,
     [](Answer& a, int) { a.nDamagedByte = TerminatorByte; }},
    {"truncated", "sends half of the body and closes the connection", NoValue,
     [](Answer& a, int) { a.bCut = a.bCloses = true; }},
    {"stalled", "sends half of the body and then nothing", NoValue,
     [](Answer& a, int) { a.bCut = true; }},
    {"huge-length", "announces a body of VALUE bytes and sends none",
     number(0x7FFFFFF0, 1, Highest),
     [](Answer& a, int n) { a.nClaimed = static_cast<std::uint32_t>(n); }},
    {"empty-body", "sends a head alone", NoValue, [](Answer& a, int) { a.strBody = ""; }},
    {"not-xml", "sends a body that is no document", NoValue,
     [](Answer& a, int) { a.strBody = "\x01\x02 this is no document <<<"; }},
    {"deep-nesting", "sends a body with VALUE levels of elements", number(100000, 1, MostPieces),
     [](Answer& a, int n) { a.strBody = deepDocument(n); }},
    {"many-attributes", "sends a body with VALUE attributes in one element",
     number(100000, 1, MostPieces), [](Answer& a, int n) { a.strBody = wideDocument(n); }},
    {"many-records", "sends a body with VALUE records", number(30000, 1, MostPieces),
     [](Answer& a, int n) { a.strBody = longDocument(n); }},
    {"invalid-utf8", "adds a name in another encoding than the declared UTF-8", NoValue,
     [](Answer& a, int) {
         DeviceName name;
         name.setName("\xC3\x28\xFF\xED");
         appendRecord(a.vecRecords, name);
     }},
    {"doctype", "sends a body that defines entities", NoValue,
     [](Answer& a, int) { a.strBody = entityDocument(); }},
    {"no-result", "answers without a result", NoValue,
     [](Answer& a, int) {
         keepRecords(a, [](const BaseDomain& record) { return !isResult(record); });
     }},
    {"no-record", "answers with a result alone", NoValue,
     [](Answer& a, int) { keepRecords(a, isResult); }},
    {"empty-list", "answers with lists that are empty", NoValue,
     [](Answer& a, int) { emptyLists(a); }},
    {"code", "answers with VALUE as the result, beside the records that were asked for",
     number(99, Lowest, Highest), replaceResult},
};

bool readNumber(const std::string& strText, auto& nNumber) {
    const char* const pEnd = strText.data() + strText.size();
    const auto [pStop, nError] = std::from_chars(strText.data(), pEnd, nNumber);
    return nError == std::errc() && pStop == pEnd;
}

int parseValue(const MisbehaviourKind& kind, const std::string& strText) {
    if (!kind.value.isTaken()) {
        throw std::invalid_argument(std::string(kind.szName) + " takes no value");
    }
    int nValue = 0;
    if (!readNumber(strText, nValue) || nValue < kind.value.nLeast || nValue > kind.value.nMost) {
        throw std::invalid_argument(kind.szName + std::string(" takes a number from ") +
                                    std::to_string(kind.value.nLeast) + " to " +
                                    std::to_string(kind.value.nMost) + ", not '" + strText + "'");
    }
    return nValue;
}

std::uint32_t parseCommand(const std::string& strText) {
    std::uint32_t nCommandId = 0;
    if (readNumber(strText, nCommandId) && findCommand(nCommandId) != nullptr) {
        return nCommandId;
    }
    const FunctionDescriptor* pFunction = findFunction(strText);
    if (pFunction == nullptr || pFunction->nRequestId == 0) {
        throw std::invalid_argument("no command '" + strText +
                                    "'; say its number or the name of an operation, such as 30507 "
                                    "or getDeviceTime");
    }
    return pFunction->nRequestId;
}

const MisbehaviourKind& parseKind(const std::string& strName) {
    if (const MisbehaviourKind* pKind = findMisbehaviourKind(strName)) {
        return *pKind;
    }
    std::string strNames;
    for (const MisbehaviourKind& kind : Kinds) {
        strNames += std::string(" ") + kind.szName;
    }
    throw std::invalid_argument("no misbehaviour '" + strName + "'; there are:" + strNames);
}

}  // namespace

std::span<const MisbehaviourKind> misbehaviourKinds() {
    return Kinds;
}

const MisbehaviourKind* findMisbehaviourKind(const std::string& strName) {
    const auto* pKind = std::find_if(std::begin(Kinds), std::end(Kinds),
                                     [&](const auto& kind) { return strName == kind.szName; });
    return pKind == std::end(Kinds) ? nullptr : pKind;
}

Misbehaviour parseMisbehaviour(const std::string& strText) {
    const std::size_t nColon = strText.find(':');
    const std::string strHead = strText.substr(0, nColon);
    const std::size_t nEquals = strHead.find('=');
    const MisbehaviourKind& kind = parseKind(strHead.substr(0, nEquals));
    Misbehaviour result;
    result.strName = kind.szName;
    if (nEquals != std::string::npos) {
        result.nValue = parseValue(kind, strHead.substr(nEquals + 1));
    }
    if (nColon != std::string::npos) {
        result.nCommandId = parseCommand(strText.substr(nColon + 1));
    }
    return result;
}
