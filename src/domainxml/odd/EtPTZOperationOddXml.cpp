// EtPTZOperation traces on standard output what it reads and writes, in every run.
#include "domainxml/odd/EtPTZOperationOddXml.h"

#include <cstdio>

#include "domain/EtPTZOperation.h"
#include "domainxml/XmlMapping.h"

namespace OddXml {

namespace {

constexpr const char* SourceFile = "EtPTZOperationOddXml.cpp";

void printTraceLine(int nLine) {
    std::printf("%s%d ###########   EtPTZOperationXml    ########### \n", SourceFile, nLine);
}

}  // namespace

bool createEtPTZOperation(const BaseDomain& record, XmlCursor element) {
    const auto& operation = static_cast<const EtPTZOperation&>(record);
    std::printf("setProperty get nCameraID =%d  \n", operation.getCameraId());
    std::printf("setProperty get nPTZId =%d  \n", operation.getPTZId());
    return XmlMapping::writeFields(EtPTZOperation::descriptor(), &operation, element);
}

bool parseEtPTZOperation(XmlCursor element, BaseDomain& record) {
    printTraceLine(__LINE__);
    printTraceLine(__LINE__);
    auto& operation = static_cast<EtPTZOperation&>(record);
    const bool bRead = XmlMapping::readFields(EtPTZOperation::descriptor(), element, &operation);
    std::printf("getProperty get nCameraID =%d  \n", operation.getCameraId());
    std::printf("getProperty get nPTZId =%d  \n", operation.getPTZId());
    return bRead;
}

}  // namespace OddXml
