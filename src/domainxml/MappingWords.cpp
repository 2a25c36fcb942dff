// The lines that mappers print about what they missed.
#include "domainxml/MappingWords.h"

#include <cstdio>

#include "Product/Technic/LogFilter.h"

using namespace fleetkit;

namespace MappingWords {

namespace {

constexpr const char* SourceFile = "MappingWords.cpp";

struct Context {
    std::string strTag;
    std::string strParent;
    std::string strValue;
};

std::string placeholderText(const std::string& strName, const Context& context) {
    if (strName == "tag") {
        return context.strTag;
    }
    if (strName == "parent") {
        return context.strParent;
    }
    if (strName == "value") {
        return context.strValue;
    }
    if (strName == "file") {
        return SourceFile;
    }
    return strName == "line" ? std::to_string(__LINE__) : std::string();
}

std::string filledIn(const std::string& strWords, const Context& context) {
    std::string strText;
    std::size_t nFrom = 0;
    for (std::size_t nOpen; (nOpen = strWords.find('{', nFrom)) != std::string::npos;) {
        const std::size_t nClose = strWords.find('}', nOpen);
        strText += strWords.substr(nFrom, nOpen - nFrom);
        strText += placeholderText(strWords.substr(nOpen + 1, nClose - nOpen - 1), context);
        nFrom = nClose + 1;
    }
    return strText + strWords.substr(nFrom);
}

// A record that speaks through the log names its own mapper there, for the filter by source file.
void print(const RecordDescriptor& owner, const std::string& strLine,
           const char* szFunction = "parseDomainXmlNode") {
    if (owner.usesLog) {
        const std::string strMapper = std::string(owner.szClass) + "Xml";
        logMessage(LogLevel::Failure, strMapper.c_str(), "[%s %s %d] %s", strMapper.c_str(),
                   szFunction, __LINE__, strLine.c_str());
        return;
    }
    std::fputs(strLine.c_str(), stdout);
}

bool isUpper(char c) {
    return c >= 'A' && c <= 'Z';
}
bool isLower(char c) {
    return c >= 'a' && c <= 'z';
}
bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

}  // namespace

void printMissing(const RecordDescriptor& owner, const FieldDescriptor& field, XmlCursor element,
                  const std::string& strValue) {
    if (field.szAbsent == nullptr) {
        print(owner, std::string(owner.szClass) + "Xml::parseDomainXmlNode get " + field.szTag +
                         " failed \n");
        return;
    }
    print(owner, filledIn(field.szAbsent, {element.name(), element.parentName(), strValue}));
}

void printMissingElement(const RecordDescriptor& owner, const FieldDescriptor& field,
                         const char* szWords, XmlCursor parent) {
    print(owner, filledIn(szWords, {field.szTag, parent.name(), ""}));
}

void printMissingList(const RecordDescriptor& owner, const FieldDescriptor& field) {
    print(owner, field.szAbsent != nullptr
                     ? field.szAbsent
                     : "getConfigNode NODE_" + nodeName(field.szTag) + " failed\n");
}

void printBadList(const RecordDescriptor& owner, const FieldDescriptor& field) {
    print(owner, field.szBad != nullptr
                     ? field.szBad
                     : "parseDomainXmlNode obj" + std::string(field.szTag) + " failed\n");
}

void printUnwritten(const RecordDescriptor& owner, const FieldDescriptor& field) {
    print(owner,
          field.szUnwritten != nullptr
              ? field.szUnwritten
              : "createDomainXmlNode " + std::string(field.szTag) + " failed \n",
          "createDomainXmlNode");
}

std::string nodeName(const std::string& strTag) {
    std::string strName;
    for (std::size_t i = 0; i < strTag.size(); ++i) {
        const char cNext = i + 1 < strTag.size() ? strTag[i + 1] : '\0';
        const bool bStartsWord =
            i > 0 && isUpper(strTag[i]) &&
            (isLower(strTag[i - 1]) || isDigit(strTag[i - 1]) || isLower(cNext));
        if (bStartsWord) {
            strName += '_';
        }
        strName += isLower(strTag[i]) ? static_cast<char>(strTag[i] - 'a' + 'A') : strTag[i];
    }
    return strName;
}

}  // namespace MappingWords
