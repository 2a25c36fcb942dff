// The lines that mappers print about what they missed.
#include "domainxml/MappingWords.h"

#include <cstdio>

#include "Product/Technic/LogFilter.h"
#include "domainxml/DecodingBudget.h"

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
void print(const RecordDescriptor& owner, const std::string& strWords, const Context& context = {},
           const char* szFunction = "parseDomainXmlNode") {
    if (!DecodingBudget::takeLine()) {
        return;
    }
    const std::string strLine = filledIn(strWords, context);
    if (owner.usesLog) {
        const std::string strMapper = std::string(owner.szClass) + "Xml";
        logMessage(LogLevel::Failure, strMapper.c_str(), "[%s %s %d] %s", strMapper.c_str(),
                   szFunction, __LINE__, strLine.c_str());
        return;
    }
    std::fputs(strLine.c_str(), stdout);
}

}  // namespace

void printMissing(const RecordDescriptor& owner, const FieldDescriptor& field, XmlCursor element,
                  const std::string& strValue) {
    print(owner, field.szAbsent, {element.name(), element.parentName(), strValue});
}

void printMissingElement(const RecordDescriptor& owner, const FieldDescriptor& field,
                         const char* szWords, XmlCursor parent) {
    print(owner, szWords, {field.szTag, parent.name(), ""});
}

void printMissingList(const RecordDescriptor& owner, const FieldDescriptor& field) {
    print(owner, field.szAbsent);
}

void printBadList(const RecordDescriptor& owner, const FieldDescriptor& field) {
    print(owner, field.szBad);
}

void printUnwritten(const RecordDescriptor& owner, const FieldDescriptor& field) {
    print(owner,
          field.szUnwritten != nullptr
              ? field.szUnwritten
              : "createDomainXmlNode " + std::string(field.szTag) + " failed \n",
          {}, "createDomainXmlNode");
}

}  // namespace MappingWords
