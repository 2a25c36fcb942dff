// A field that is one attribute, as text and back.
#include "domainxml/FieldText.h"

#include <limits>

#include "domainxml/JoinedText.h"

using namespace fleetkit;

namespace FieldText {

namespace {

using Strings = std::vector<std::string>;
using Ints = std::vector<int>;

// The whole part of a number; what an int cannot hold becomes its lowest value.
int truncated(float fValue) noexcept {
    constexpr float Limit = 2147483648.0F;
    return fValue >= -Limit && fValue < Limit ? static_cast<int>(fValue)
                                              : std::numeric_limits<int>::min();
}

Ints numbersOf(const RecordDescriptor& piece, const void* pPiece) {
    Ints vecNumbers;
    for (const FieldDescriptor& field : piece) {
        vecNumbers.push_back(memberOf<int>(pPiece, field.nOffset));
    }
    return vecNumbers;
}

}  // namespace

std::string of(const FieldDescriptor& field, const Ints& vecNumbers) {
    Strings vecPieces;
    for (const int nNumber : vecNumbers) {
        vecPieces.push_back(JoinedText::format(field.szItem, {nNumber}));
    }
    return JoinedText::join(vecPieces, field.szSeparator);
}

std::string of(const FieldDescriptor& field, const ConstJoinedRecords& records) {
    Strings vecPieces;
    for (std::size_t i = 0; i < records.size(); ++i) {
        vecPieces.push_back(
            JoinedText::format(field.szItem, numbersOf(records.type, records.at(i))));
    }
    return JoinedText::join(vecPieces, field.szSeparator);
}

void read(const FieldDescriptor& field, const char* szText, int& nValue) {
    if (!field.has(ReadAsFloat)) {
        nValue = XmlText::toInt(szText);
        return;
    }
    auto fValue = static_cast<float>(nValue);
    XmlText::toFloat(szText, fValue);
    nValue = truncated(fValue);
}

void read(const FieldDescriptor& field, const char* szText, Ints& vecNumbers) {
    vecNumbers.clear();
    for (const std::string& strPiece : JoinedText::split(szText, field.szSeparator)) {
        const Ints vecScanned = JoinedText::scan(field.szItem, strPiece);
        vecNumbers.push_back(vecScanned.empty() ? XmlText::toInt(strPiece.c_str())
                                                : vecScanned.front());
    }
}

void read(const FieldDescriptor& field, const char* szText, const JoinedRecords& records) {
    const RecordDescriptor& piece = records.type;
    std::vector<Ints> vecWhole;
    for (const std::string& strPiece : JoinedText::split(szText, field.szSeparator)) {
        Ints vecScanned = JoinedText::scan(field.szItem, strPiece);
        if (vecScanned.size() == piece.nFieldCount) {
            vecWhole.push_back(std::move(vecScanned));
        }
    }
    piece.access.listReset(records.pList, vecWhole.size());
    for (std::size_t i = 0; i < vecWhole.size(); ++i) {
        void* pPiece = piece.access.listElement(records.pList, i);
        for (std::size_t n = 0; n < piece.nFieldCount; ++n) {
            memberOf<int>(pPiece, piece.pFields[n].nOffset) = vecWhole[i][n];
        }
    }
}

}  // namespace FieldText
