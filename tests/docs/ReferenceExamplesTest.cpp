// The example elements of the reference are what the mappers read and write.
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>

#include "domain/RecordDescriptor.h"
#include "domainxml/XmlMapping.h"
#include "support/CapturedOutput.h"

using namespace fleetkit;

namespace {

constexpr std::size_t NamedRecords = 649;
constexpr std::size_t OneWayRecords = 22;

// Whether reading a record and writing it gives the same text: not where a field is written and not
// read, or read into another one.
bool isTwoWay(const RecordDescriptor& descriptor) {
    return (descriptor.base == nullptr || isTwoWay(descriptor.base())) &&
           std::all_of(descriptor.begin(), descriptor.end(), [](const FieldDescriptor& field) {
               return !field.has(WriteOnly) && field.szReadInto == nullptr &&
                      field.szUnread == nullptr &&
                      (field.nested == nullptr || isTwoWay(field.nested()));
           });
}

void checkExample(const RecordDescriptor& descriptor, const std::string& strText) {
    const XmlDocument example = XmlDocument::parse(strText.c_str());
    ASSERT_TRUE(example.root());
    const auto pRecord = descriptor.access.make();
    const std::string strPrinted = captureOutput(
        [&] { EXPECT_TRUE(XmlMapping::readRecord(descriptor, example.root(), pRecord.get())); });
    // One record traces all that it reads.
    if (strPrinted.find("###########") == std::string::npos) {
        EXPECT_EQ(strPrinted, "");
    }
    const XmlDocument written(example.root().name());
    captureOutput(
        [&] { EXPECT_TRUE(XmlMapping::writeRecord(descriptor, pRecord.get(), written.root())); });
    if (isTwoWay(descriptor)) {
        EXPECT_EQ(written.root().text(), strText);
    }
}

TEST(ReferenceExamples, AreWhatTheMappersReadAndWrite) {
    std::ifstream file(REFERENCE_EXAMPLES);
    std::size_t nCount = 0;
    std::size_t nTwoWay = 0;
    for (std::string strClass; std::getline(file, strClass); ++nCount) {
        SCOPED_TRACE(strClass);
        std::string strText;
        for (std::string strLine; std::getline(file, strLine) && !strLine.empty();) {
            strText += strLine + "\n";
        }
        const RecordDescriptor* pDescriptor = findRecordDescriptor(strClass);
        ASSERT_NE(pDescriptor, nullptr);
        nTwoWay += isTwoWay(*pDescriptor) ? 1 : 0;
        checkExample(*pDescriptor, strText);
    }
    EXPECT_EQ(nCount, NamedRecords);
    EXPECT_EQ(nTwoWay, NamedRecords - OneWayRecords);
}

}  // namespace
