// A field that is one attribute, as text and back.
#include "domainxml/FieldText.h"

#include <limits>

#include "domainxml/JoinedText.h"
#include "domainxml/XmlText.h"

using namespace fleetkit;

namespace FieldText {

namespace {

using Strings = std::vector<std::string>;
using Ints = std::vector<int>;

std::string scalarText(FieldKind nKind, const void* pMember) {
    switch (nKind) {
        case FieldKind::Bool:
            return XmlText::ofBool(*static_cast<const bool*>(pMember));
        case FieldKind::Int:
            return XmlText::ofInt(*static_cast<const int*>(pMember));
        case FieldKind::UnsignedShort:
            return XmlText::ofInt(*static_cast<const unsigned short*>(pMember));
        case FieldKind::Float:
            return XmlText::ofFloat(*static_cast<const float*>(pMember));
        case FieldKind::Double:
            return XmlText::ofDouble(*static_cast<const double*>(pMember));
        case FieldKind::String:
            return *static_cast<const std::string*>(pMember);
        default:
            return {};
    }
}

void clearScalar(FieldKind nKind, void* pMember) {
    switch (nKind) {
        case FieldKind::Bool:
            *static_cast<bool*>(pMember) = false;
            break;
        case FieldKind::Int:
            *static_cast<int*>(pMember) = 0;
            break;
        case FieldKind::UnsignedShort:
            *static_cast<unsigned short*>(pMember) = 0;
            break;
        case FieldKind::Float:
            *static_cast<float*>(pMember) = 0;
            break;
        case FieldKind::Double:
            *static_cast<double*>(pMember) = 0;
            break;
        case FieldKind::String:
            static_cast<std::string*>(pMember)->clear();
            break;
        default:
            break;
    }
}

// The whole part of a number; what an int cannot hold becomes its lowest value.
int truncated(float fValue) noexcept {
    constexpr float Limit = 2147483648.0F;
    return fValue >= -Limit && fValue < Limit ? static_cast<int>(fValue)
                                              : std::numeric_limits<int>::min();
}

void readScalar(const FieldDescriptor& field, const char* szText, void* pMember) {
    switch (field.nKind) {
        case FieldKind::Bool:
            XmlText::toBool(szText, *static_cast<bool*>(pMember));
            break;
        case FieldKind::Int:
            if (field.has(ReadAsFloat)) {
                auto fValue = static_cast<float>(*static_cast<int*>(pMember));
                XmlText::toFloat(szText, fValue);
                *static_cast<int*>(pMember) = truncated(fValue);
            } else {
                *static_cast<int*>(pMember) = XmlText::toInt(szText);
            }
            break;
        case FieldKind::UnsignedShort:
            *static_cast<unsigned short*>(pMember) =
                static_cast<unsigned short>(XmlText::toInt(szText));
            break;
        case FieldKind::Float:
            XmlText::toFloat(szText, *static_cast<float*>(pMember));
            break;
        case FieldKind::Double:
            XmlText::toDouble(szText, *static_cast<double*>(pMember));
            break;
        case FieldKind::String:
            *static_cast<std::string*>(pMember) = szText;
            break;
        default:
            break;
    }
}

Ints numbersOf(const RecordDescriptor& piece, const void* pPiece) {
    Ints vecNumbers;
    for (const FieldDescriptor& field : piece) {
        vecNumbers.push_back(memberOf<int>(pPiece, field.nOffset));
    }
    return vecNumbers;
}

std::string joinedText(const FieldDescriptor& field, const void* pMember) {
    Strings vecPieces;
    if (field.nKind == FieldKind::JoinedInts) {
        for (const int nNumber : *static_cast<const Ints*>(pMember)) {
            vecPieces.push_back(JoinedText::format(field.szItem, {nNumber}));
        }
    } else {
        const RecordDescriptor& piece = field.nested();
        for (std::size_t i = 0; i < piece.access.listSize(pMember); ++i) {
            vecPieces.push_back(JoinedText::format(
                field.szItem, numbersOf(piece, piece.access.listAt(pMember, i))));
        }
    }
    return JoinedText::join(vecPieces, field.szSeparator);
}

void readJoinedInts(const FieldDescriptor& field, const Strings& vecPieces, void* pMember) {
    Ints vecNumbers;
    for (const std::string& strPiece : vecPieces) {
        const Ints vecScanned = JoinedText::scan(field.szItem, strPiece);
        vecNumbers.push_back(vecScanned.empty() ? XmlText::toInt(strPiece.c_str())
                                                : vecScanned.front());
    }
    *static_cast<Ints*>(pMember) = std::move(vecNumbers);
}

void readJoinedRecords(const FieldDescriptor& field, const Strings& vecPieces, void* pMember) {
    const RecordDescriptor& piece = field.nested();
    std::vector<Ints> vecWhole;
    for (const std::string& strPiece : vecPieces) {
        Ints vecScanned = JoinedText::scan(field.szItem, strPiece);
        if (vecScanned.size() == piece.nFieldCount) {
            vecWhole.push_back(std::move(vecScanned));
        }
    }
    piece.access.listReset(pMember, vecWhole.size());
    for (std::size_t i = 0; i < vecWhole.size(); ++i) {
        void* pPiece = piece.access.listElement(pMember, i);
        for (std::size_t n = 0; n < piece.nFieldCount; ++n) {
            memberOf<int>(pPiece, piece.pFields[n].nOffset) = vecWhole[i][n];
        }
    }
}

void readJoined(const FieldDescriptor& field, const char* szText, void* pMember) {
    const Strings vecPieces = JoinedText::split(szText, field.szSeparator);
    if (field.nKind == FieldKind::JoinedInts) {
        readJoinedInts(field, vecPieces, pMember);
    } else {
        readJoinedRecords(field, vecPieces, pMember);
    }
}

bool isJoined(const FieldDescriptor& field) noexcept {
    return field.nKind == FieldKind::JoinedInts || field.nKind == FieldKind::JoinedRecords;
}

}  // namespace

std::string of(const FieldDescriptor& field, const void* pMember) {
    return isJoined(field) ? joinedText(field, pMember) : scalarText(field.nKind, pMember);
}

void read(const FieldDescriptor& field, const char* szText, void* pMember) {
    if (isJoined(field)) {
        readJoined(field, szText, pMember);
    } else {
        readScalar(field, szText, pMember);
    }
}

void clear(const FieldDescriptor& field, void* pMember) {
    if (field.nKind == FieldKind::JoinedInts) {
        static_cast<Ints*>(pMember)->clear();
    } else if (field.nKind == FieldKind::JoinedRecords) {
        field.nested().access.listReset(pMember, 0);
    } else {
        clearScalar(field.nKind, pMember);
    }
}

}  // namespace FieldText
