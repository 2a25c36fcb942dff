// The table of misbehaviours, each as a change to the answer that was due.
#include "virtual-device/Misbehaviour.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <memory>

#include "domain/DeviceName.h"
#include "domain/EtResult.h"
#include "domain/RecordDescriptor.h"
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

constexpr MisbehaviourKind Kinds[] = {
    {"delay", "answers VALUE milliseconds late", 1000,
     [](Answer& a, int n) { a.nDelay = std::chrono::milliseconds(n); }},
    {"drop", "does not answer", 0, [](Answer& a, int) { a.bSilent = true; }},
    {"close", "closes the connection instead of answering", 0,
     [](Answer& a, int) { a.bSilent = a.bCloses = true; }},
    {"strays", "sends VALUE answers to other requests first", 1, addStrays},
    {"twice", "answers twice", 0, [](Answer& a, int) { a.bTwice = true; }},
    {"trickle", "sends the answer byte by byte", 0, [](Answer& a, int) { a.bTrickles = true; }},
    {"wrong-session", "answers with a session number that is off by VALUE", 1,
     [](Answer& a, int n) {
         a.head.setSessionId(a.head.getSessionId() + static_cast<std::uint32_t>(n));
     }},
    {"wrong-sequence", "answers with a sequence number that is off by VALUE", 1,
     [](Answer& a, int n) {
         a.head.setSequence(static_cast<std::uint16_t>(a.head.getSequence() + n));
     }},
    {"wrong-command", "answers with a command id that is off by VALUE", 1,
     [](Answer& a, int n) {
         a.head.setCommandID(a.head.getCommandID() + static_cast<std::uint32_t>(n));
     }},
    {"protocol-type", "names VALUE as the protocol type in the head", ProtocolType::Binary,
     [](Answer& a, int n) { a.head.setProtocolType(static_cast<std::uint16_t>(n)); }},
    {"bad-magic", "sends a head that begins wrong", 0,
     [](Answer& a, int) { a.nDamagedByte = std::size_t{0}; }},
    {"bad-checksum", "sends a head with a wrong checksum", 0,
     [](Answer& a, int) { a.nDamagedByte = ChecksumByte; }},
    {"bad-terminator", "sends a head that ends wrong", 0,
     [](Answer& a, int) { a.nDamagedByte = TerminatorByte; }},
    {"truncated", "sends half of the body and closes the connection", 0,
     [](Answer& a, int) { a.bCut = a.bCloses = true; }},
    {"stalled", "sends half of the body and then nothing", 0,
     [](Answer& a, int) { a.bCut = true; }},
    {"huge-length", "announces a body of VALUE bytes and sends none", 0x7FFFFFF0,
     [](Answer& a, int n) { a.nClaimed = static_cast<std::uint32_t>(n); }},
    {"empty-body", "sends a head alone", 0, [](Answer& a, int) { a.strBody = ""; }},
    {"not-xml", "sends a body that is no document", 0,
     [](Answer& a, int) { a.strBody = "\x01\x02 this is no document <<<"; }},
    {"deep-nesting", "sends a body with VALUE levels of elements", 100000,
     [](Answer& a, int n) { a.strBody = deepDocument(n); }},
    {"many-attributes", "sends a body with VALUE attributes in one element", 100000,
     [](Answer& a, int n) { a.strBody = wideDocument(n); }},
    {"many-records", "sends a body with VALUE records", 30000,
     [](Answer& a, int n) { a.strBody = longDocument(n); }},
    {"invalid-utf8", "adds a name in another encoding than the declared UTF-8", 0,
     [](Answer& a, int) {
         DeviceName name;
         name.setName("\xC3\x28\xFF\xED");
         appendRecord(a.vecRecords, name);
     }},
    {"doctype", "sends a body that defines entities", 0,
     [](Answer& a, int) { a.strBody = entityDocument(); }},
    {"no-result", "answers without a result", 0,
     [](Answer& a, int) {
         keepRecords(a, [](const BaseDomain& record) { return !isResult(record); });
     }},
    {"no-record", "answers with a result alone", 0,
     [](Answer& a, int) { keepRecords(a, isResult); }},
    {"empty-list", "answers with lists that are empty", 0, [](Answer& a, int) { emptyLists(a); }},
    {"code", "answers with VALUE as the result, beside the records that were asked for", 99,
     replaceResult},
};

bool readNumber(const std::string& strText, auto& nNumber) {
    const char* const pEnd = strText.data() + strText.size();
    const auto [pStop, nError] = std::from_chars(strText.data(), pEnd, nNumber);
    return nError == std::errc() && pStop == pEnd;
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

std::optional<Misbehaviour> parseMisbehaviour(const std::string& strText) {
    Misbehaviour result;
    const std::size_t nColon = strText.find(':');
    const std::string strHead = strText.substr(0, nColon);
    if (nColon != std::string::npos && !readNumber(strText.substr(nColon + 1), result.nCommandId)) {
        return std::nullopt;
    }
    const std::size_t nEquals = strHead.find('=');
    if (nEquals != std::string::npos &&
        !readNumber(strHead.substr(nEquals + 1), result.nValue.emplace())) {
        return std::nullopt;
    }
    result.strName = strHead.substr(0, nEquals);
    if (!findMisbehaviourKind(result.strName)) {
        return std::nullopt;
    }
    return result;
}
