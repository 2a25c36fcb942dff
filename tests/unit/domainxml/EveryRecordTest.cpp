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

        // The attributes the other way round, and the children between strangers.
        TiXmlElement shuffled(*plain.RootElement());
        shuffled.SetAttribute("Unknown", 1);
        for (const TiXmlAttribute* pAttribute = plain.RootElement()->LastAttribute();
             pAttribute != nullptr; pAttribute = pAttribute->Previous()) {
            shuffled.RemoveAttribute(pAttribute->Name());
            shuffled.SetAttribute(pAttribute->Name(), pAttribute->Value());
        }
        TiXmlElement stranger("Unknown");
        stranger.SetAttribute("Id", 7);
        shuffled.InsertBeforeChild(shuffled.FirstChild(), stranger);
        shuffled.InsertEndChild(stranger);
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

// A list of records of one type.
struct MappedList {
    explicit MappedList(const RecordDescriptor& descriptor)
        : access(descriptor.access),
          pContainer(access.makeContainer()),
          pElements(access.containerList(*pContainer)) {}

    std::size_t size() const { return access.listSize(pElements); }

    const TypeAccess& access;
    std::unique_ptr<DomainContainer> pContainer;
    void* pElements;
};

TEST(EveryRecord, IsMappedAloneAndInLists) {
    forEach(namedRecords(), [](const RecordDescriptor& descriptor) {
        const auto pMapper = createDomainXml(descriptor.nDomainId);
        const MappedRecord single = MappedRecord::filled(descriptor);
        const MappedList list(descriptor);
        const Node entry = newNode("Any");  // an entry is read whatever its tag
        const Node entries = newNode("List");
        const Node written = newNode("List");
        captureOutput([&] {
            EXPECT_TRUE(pMapper->createDomainXmlNode(single.domain(), entry));
            EXPECT_TRUE(entries->addChild(entry) && entries->addChild(entry));
            EXPECT_TRUE(pMapper->parseDomainXmlNode(entries, *list.pContainer));
            EXPECT_TRUE(pMapper->createDomainXmlNode(*list.pContainer, written));
        });
        EXPECT_EQ(textOf(entry), single.text("Any"));
        ASSERT_EQ(list.size(), 2U);
        MappedRecord expected(descriptor);
        expected.read(single.text());
        EXPECT_TRUE(
            equalRecords(descriptor, list.access.listAt(list.pElements, 1), expected.get()));
        std::vector<Node> vecEntries;
        written->getChildNodes(descriptor.szEntry, vecEntries);
        EXPECT_EQ(vecEntries.size(), 2U) << textOf(written);

        const Node empty = newNode("List");
        EXPECT_TRUE(pMapper->parseDomainXmlNode(empty, *list.pContainer));
        EXPECT_EQ(list.size(), 0U);
        EXPECT_TRUE(pMapper->createDomainXmlNode(*list.pContainer, empty));
        EXPECT_EQ(textOf(empty), "<List />\n");
    });
}

TEST(EveryRecord, IsRefusedByTheMapperOfAnotherTypeAndUntouched) {
    std::uint32_t nOtherId = namedRecords().back()->nDomainId;
    forEach(namedRecords(), [&](const RecordDescriptor& descriptor) {
        const auto pMapper = createDomainXml(std::exchange(nOtherId, descriptor.nDomainId));
        const Node node = newNode("T");
        const MappedRecord record = MappedRecord::filled(descriptor);
        const MappedList list(descriptor);
        list.access.listReset(list.pElements, 2);
        for (BaseDomain* pDomain :
             {&record.domain(), static_cast<BaseDomain*>(list.pContainer.get())}) {
            EXPECT_FALSE(pMapper->createDomainXmlNode(*pDomain, node));
            EXPECT_FALSE(pMapper->parseDomainXmlNode(node, *pDomain));
        }
        EXPECT_EQ(textOf(node), "<T />\n");
        EXPECT_TRUE(record.equals(MappedRecord::filled(descriptor)));
        EXPECT_EQ(list.size(), 2U);
    });
}

}  // namespace
