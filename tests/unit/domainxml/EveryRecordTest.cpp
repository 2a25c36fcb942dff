// What holds for every record of the vocabulary: comparison, text and back, factories, mappers.
#include <gtest/gtest.h>
#include <tinyxml.h>

#include <fstream>
#include <map>
#include <string>

#include "domain/DomainFactory.h"
#include "domainxml/DomainXmlFactory.h"
#include "unit/domainxml/MappedRecord.h"
#include "unit/domainxml/NodeText.h"

using namespace fleetkit;

namespace {

// The check for each record, which is told with whatever fails.
template <class Check>
void forEach(const std::vector<const RecordDescriptor*>& vecRecords, const Check& check) {
    ASSERT_FALSE(vecRecords.empty());
    for (const RecordDescriptor* pDescriptor : vecRecords) {
        SCOPED_TRACE(pDescriptor->szClass);
        check(*pDescriptor);
    }
}

// One record traces whatever it reads, another tells of the library that it lacks when it is new.
bool isSilent(const RecordDescriptor& descriptor, bool bNew) {
    return descriptor.nDomainId != 1009 && !(bNew && descriptor.nDomainId == 145);
}

// ---- records

TEST(EveryRecord, IsEqualWhenEveryFieldIs) {
    forEach(allRecords(), [](const RecordDescriptor& descriptor) {
        const MappedRecord fresh(descriptor);
        const MappedRecord filled = MappedRecord::filled(descriptor);
        EXPECT_EQ(fresh.domain().getDomainId(), descriptor.nDomainId);
        EXPECT_TRUE(fresh.equals(MappedRecord(descriptor)));
        EXPECT_TRUE(filled.equals(MappedRecord::filled(descriptor)));
        const bool bHasFields = descriptor.nFieldCount > 0 || descriptor.base != nullptr;
        EXPECT_NE(filled.equals(fresh), bHasFields);
        for (const FieldDescriptor& field : descriptor) {
            EXPECT_FALSE(equalFields(field, filled.get(), fresh.get())) << field.szTag;
        }
    });
}

TEST(EveryRecord, ComesBackAsItWasFromItsText) {
    forEach(allRecords(), [](const RecordDescriptor& descriptor) {
        for (const bool bNew : {true, false}) {
            const MappedRecord before =
                bNew ? MappedRecord(descriptor) : MappedRecord::filled(descriptor);
            MappedRecord after(descriptor);
            EXPECT_EQ(after.read(before.text()).empty(), isSilent(descriptor, bNew));
            EXPECT_EQ(after.equals(before), bNew || isTwoWay(descriptor));
            if (after.equals(before)) {
                EXPECT_EQ(after.text(), before.text());
                // Nothing is left of what another record held.
                MappedRecord used = MappedRecord::filled(descriptor, 5000, bNew);
                used.read(before.text());
                EXPECT_TRUE(bNew || used.equals(before)) << used.text();
            }
        }
    });
}

TEST(EveryRecord, IsReadWhateverTheOrderAndTheStrangers) {
    forEach(allRecords(), [](const RecordDescriptor& descriptor) {
        TiXmlDocument plain;
        plain.Parse(MappedRecord::filled(descriptor).text().c_str());
        MappedRecord fromPlain(descriptor);
        fromPlain.read(XmlCursor(plain.RootElement()));

        // The attributes the other way round, and the children behind a stranger.
        TiXmlElement shuffled("R");
        shuffled.SetAttribute("Unknown", 1);
        for (const TiXmlAttribute* pAttribute = plain.RootElement()->LastAttribute();
             pAttribute != nullptr; pAttribute = pAttribute->Previous()) {
            shuffled.SetAttribute(pAttribute->Name(), pAttribute->Value());
        }
        shuffled.InsertEndChild(TiXmlElement("Unknown"))->ToElement()->SetAttribute("Id", 7);
        for (const TiXmlNode* pChild = plain.RootElement()->FirstChild(); pChild != nullptr;
             pChild = pChild->NextSibling()) {
            shuffled.InsertEndChild(*pChild);
        }
        MappedRecord fromShuffled(descriptor);
        fromShuffled.read(XmlCursor(&shuffled));
        const bool bBareValues = descriptor.nDomainId == 1079;  // collects every child
        EXPECT_EQ(fromShuffled.equals(fromPlain), !bBareValues) << fromShuffled.text();
    });
}

// Each class name with an element, as the pages of the reference show it.
TEST(EveryRecord, IsReadFromItsExampleInTheReference) {
    std::ifstream file(REFERENCE_EXAMPLES);
    std::map<std::string, std::string> mapExamples;
    for (std::string strClass; std::getline(file, strClass);) {
        for (std::string strLine; std::getline(file, strLine) && !strLine.empty();) {
            mapExamples[strClass] += strLine + "\n";
        }
    }
    EXPECT_EQ(mapExamples.size(), namedRecords().size());
    forEach(namedRecords(), [&](const RecordDescriptor& descriptor) {
        MappedRecord record(descriptor);
        const std::string& strExample = mapExamples[descriptor.szClass];
        EXPECT_EQ(record.read(strExample).empty(), isSilent(descriptor, false));
        if (isTwoWay(descriptor)) {
            EXPECT_EQ(record.text(descriptor.szName), strExample);
        }
    });
}

// ---- names and ids

constexpr std::uint32_t None = 0xFFFFFFFF;

TEST(EveryRecord, IsFoundByIdAndByItsNamesUnlessItOccursOnlyNested) {
    std::map<std::string, std::uint32_t> mapFirst;  // of the types that share a name
    forEach(allRecords(), [&](const RecordDescriptor& descriptor) {
        const std::uint32_t nId = descriptor.nDomainId;
        std::string strName;
        EXPECT_EQ(findRecordDescriptor(descriptor.szClass), &descriptor);
        if (descriptor.szName == nullptr) {
            const bool bAsBase = nId == 0;  // one nested type has the id of the base
            EXPECT_EQ(findRecordDescriptor(nId) == &descriptor, !bAsBase);
            EXPECT_EQ(getDomainName(nId, strName), bAsBase);
            EXPECT_EQ(createDomainXml(nId) != nullptr, bAsBase);
            EXPECT_EQ(createSingleDomain(descriptor.szClass), nullptr);
            return;
        }
        const std::string strTag = descriptor.szName;
        EXPECT_EQ(findRecordDescriptor(nId), &descriptor);
        EXPECT_TRUE(getDomainNameOfRecord(*descriptor.access.make(), strName));
        EXPECT_EQ(strName, strTag);
        EXPECT_TRUE(getDomainNameOfRecord(*descriptor.access.makeContainer(), strName));
        EXPECT_EQ(strName, strTag + "List");
        const std::uint32_t nFirst = mapFirst.emplace(strTag, nId).first->second;
        EXPECT_EQ(createSingleDomain(strTag)->getDomainId(), nFirst);
        const bool bList = descriptor.szList != nullptr;
        const auto pList = createListDomain(bList ? descriptor.szList : strTag + "List");
        EXPECT_EQ(pList == nullptr ? None : effectiveDomainId(*pList), bList ? nFirst : None);
        EXPECT_EQ(pList != nullptr && pList->getDomainId() == ContainerDomainId, bList);
    });
}

// ---- mappers

// A list with two filled records.
std::unique_ptr<DomainContainer> filledList(const RecordDescriptor& descriptor) {
    auto pList = descriptor.access.makeContainer();
    void* pElements = descriptor.access.containerList(*pList);
    descriptor.access.listReset(pElements, 2);
    RecordFiller filler;
    filler.fill(descriptor, descriptor.access.listElement(pElements, 0));
    filler.fill(descriptor, descriptor.access.listElement(pElements, 1));
    return pList;
}

std::size_t sizeOf(const RecordDescriptor& descriptor, DomainContainer& list) {
    return descriptor.access.listSize(descriptor.access.containerList(list));
}

TEST(EveryRecord, IsMappedAloneAndInLists) {
    forEach(namedRecords(), [](const RecordDescriptor& descriptor) {
        const auto pMapper = createDomainXml(descriptor.nDomainId);
        ASSERT_NE(pMapper, nullptr);
        const MappedRecord single = MappedRecord::filled(descriptor);
        const Node node = newNode(descriptor.szClass);
        const Node list = newNode("List");
        const auto pList = filledList(descriptor);
        captureOutput([&] {
            EXPECT_TRUE(pMapper->createDomainXmlNode(single.domain(), node));
            EXPECT_TRUE(pMapper->createDomainXmlNode(*pList, list));
        });
        EXPECT_EQ(textOf(node), single.text());
        std::vector<Node> vecEntries;
        list->getChildNodes(descriptor.szEntry, vecEntries);
        EXPECT_EQ(vecEntries.size(), 2U) << textOf(list);

        // An empty list is an element without children.
        const Node empty = newNode("List");
        EXPECT_TRUE(pMapper->parseDomainXmlNode(empty, *pList));
        EXPECT_EQ(sizeOf(descriptor, *pList), 0U);
        EXPECT_TRUE(pMapper->createDomainXmlNode(*pList, empty));
        EXPECT_EQ(textOf(empty), "<List />\n");

        // Entries are read whatever their tag.
        const Node wrong = newNode("List");
        captureOutput([&] {
            const Node entry = newNode("Wrong");
            EXPECT_TRUE(pMapper->createDomainXmlNode(single.domain(), entry));
            EXPECT_TRUE(wrong->addChild(entry) && pMapper->parseDomainXmlNode(wrong, *pList));
        });
        MappedRecord expected(descriptor);
        expected.read(single.text());
        ASSERT_EQ(sizeOf(descriptor, *pList), 1U);
        const void* pRead = descriptor.access.listAt(descriptor.access.containerList(*pList), 0);
        EXPECT_TRUE(equalRecords(descriptor, pRead, expected.get()));
    });
}

TEST(EveryRecord, IsRefusedByTheMapperOfAnotherTypeAndUntouched) {
    std::uint32_t nOtherId = namedRecords().back()->nDomainId;
    forEach(namedRecords(), [&](const RecordDescriptor& descriptor) {
        const auto pMapper = createDomainXml(nOtherId);
        nOtherId = descriptor.nDomainId;
        const Node node = newNode("T");
        const MappedRecord record = MappedRecord::filled(descriptor);
        const auto pList = filledList(descriptor);
        EXPECT_FALSE(pMapper->createDomainXmlNode(record.domain(), node));
        EXPECT_FALSE(pMapper->createDomainXmlNode(*pList, node));
        EXPECT_EQ(textOf(node), "<T />\n");
        EXPECT_FALSE(pMapper->parseDomainXmlNode(node, record.domain()));
        EXPECT_FALSE(pMapper->parseDomainXmlNode(node, *pList));
        EXPECT_TRUE(record.equals(MappedRecord::filled(descriptor)));
        EXPECT_EQ(sizeOf(descriptor, *pList), 2U);
    });
}

}  // namespace
