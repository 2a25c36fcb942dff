// The five binary forms of a body, byte by byte.
#include <gtest/gtest.h>

#include <functional>
#include <typeinfo>

#include "domain/ChannelId.h"
#include "domain/DataBuffer.h"
#include "domain/DomainVectorContainer.h"
#include "domain/EtCOMWriteData.h"
#include "domain/EtFileDataPack.h"
#include "domain/EtPTZOperation.h"
#include "domain/EtResult.h"
#include "protocol/COMWriteDataCommandBodyParser.h"
#include "protocol/FileReadDataCommandBodyParser.h"
#include "protocol/ICommandBodyParser.h"
#include "protocol/NetworkOrder.h"
#include "protocol/PTZOperationBodyParser.h"
#include "protocol/ParamImportReqBodyParser.h"
#include "protocol/RemoteSnapshotRespBodyParser.h"
#include "protocol/SDKNormalXmlBodyParser.h"
#include "support/WireBytes.h"

namespace {

DataBuffer dataOf(const std::string& strBytes) {
    DataBuffer data;
    data.setData(reinterpret_cast<const std::uint8_t*>(strBytes.data()),
                 static_cast<std::int32_t>(strBytes.size()));
    return data;
}

std::string bytesOf(const DataBuffer& data) {
    return {reinterpret_cast<const char*>(data.getData()),
            static_cast<std::size_t>(data.getSize())};
}

EtResult resultOf(int nCode) {
    EtResult result;
    result.setCode(nCode);
    return result;
}

EtCOMWriteData comWrite(const std::string& strData) {
    EtCOMWriteData write;
    write.setComData(dataOf(strData));
    write.setComId(2);
    write.setComType(0x80000003);
    return write;
}

EtPTZOperation ptzOperation(const std::string& strOperation, const std::string& strName) {
    EtPTZOperation operation;
    operation.setCameraId(5);
    operation.setPTZId(6);
    operation.setPTZOperation(strOperation);
    operation.setName(strName);
    return operation;
}

EtFileDataPack filePack(const std::string& strData) {
    EtFileDataPack pack;
    pack.setDataBuffer(dataOf(strData));
    pack.setPackFlag(0xC1);
    return pack;
}

// One command id with the bytes of its body.
struct Form {
    std::uint32_t nCommandID;
    Records records;  // unneeded ones among them, in an order that is not that of the bytes
    std::string strBytes;
    std::size_t nLengthOffset;              // of the first length in the body
    std::size_t nShorterForm = 0;           // a shorter body that is whole as well
    std::vector<std::uint32_t> vecReadIds;  // of the records that come back
};

const Form& comForm() {
    static const Form form{33019,
                           recordsOf(ChannelId(), comWrite("xyz")),
                           fromHex("00 00 00 03 78 79 7A 00 00 00 02 80 00 00 03"),
                           0,
                           0,
                           {1067}};
    return form;
}

const Form& ptzForm() {
    static const Form form{14006,
                           recordsOf(resultOf(-2), ptzOperation("UP", "gate")),
                           fromHex("FF FF FF FE 00 00 00 05 00 00 00 02 55 50 "
                                   "00 00 00 04 67 61 74 65 00 00 00 06"),
                           8,
                           22,
                           {1009, 801}};
    return form;
}

const Form& importForm() {
    static const Form form{
        33026, recordsOf(resultOf(1), dataOf("ab")), fromHex("00 00 00 02 61 62"), 0, 0, {416}};
    return form;
}

Form fileForm(std::uint32_t nCommandID) {
    return {nCommandID,
            recordsOf(resultOf(1), filePack("data")),
            fromHex("00 00 00 04 C1 00 00 00 01 64 61 74 61"),
            0,
            0,
            {1125, 801}};
}

Form snapshotForm(std::uint32_t nCommandID) {
    return {nCommandID,
            recordsOf(resultOf(258), dataOf("IMG")),
            fromHex("00 00 00 03 00 00 01 02 49 4D 47"),
            0,
            0,
            {416, 801}};
}

bool parse(std::uint32_t nCommandID, const std::string& strBytes, Records& records) {
    return createBodyParser(nCommandID)->parseCommandBody(payloadOf(strBytes), records);
}

bool refuses(std::uint32_t nCommandID, const std::string& strBytes) {
    Records records;
    return !parse(nCommandID, strBytes, records) && records.empty();
}

class BinaryBodyTest : public testing::TestWithParam<std::function<Form()>> {
protected:
    const Form m_objForm = GetParam()();
};

TEST_P(BinaryBodyTest, WritesTheBytesOfItsRecordsWhateverTheirOrder) {
    CommandBuffer buffer;
    const auto parser = createBodyParser(m_objForm.nCommandID);
    ASSERT_TRUE(parser->createCommandBody(m_objForm.records, buffer));
    EXPECT_EQ(::bytesOf(buffer), m_objForm.strBytes);
    EXPECT_EQ(buffer.getCapacity(), m_objForm.strBytes.size());

    const Records reversed(m_objForm.records.rbegin(), m_objForm.records.rend());
    ASSERT_TRUE(parser->createCommandBody(reversed, buffer));
    EXPECT_EQ(::bytesOf(buffer), m_objForm.strBytes);
}

TEST_P(BinaryBodyTest, ReadsItsRecordsInTheirFixedOrder) {
    Records records;
    ASSERT_TRUE(parse(m_objForm.nCommandID, m_objForm.strBytes, records));
    std::vector<std::uint32_t> vecIds;
    for (const auto& record : records) {
        vecIds.push_back(record->getDomainId());
    }
    EXPECT_EQ(vecIds, m_objForm.vecReadIds);
}

TEST_P(BinaryBodyTest, IsNotWrittenWithoutARecordThatItNeeds) {
    CommandBuffer buffer;
    const auto parser = createBodyParser(m_objForm.nCommandID);
    EXPECT_FALSE(parser->createCommandBody({}, buffer));
    EXPECT_FALSE(parser->createCommandBody(recordsOf(resultOf(0)), buffer));
    EXPECT_EQ(buffer.data(), nullptr);
}

TEST_P(BinaryBodyTest, IsRefusedWhenItEndsTooEarly) {
    for (std::size_t nSize = 0; nSize < m_objForm.strBytes.size(); ++nSize) {
        const std::string strCut = m_objForm.strBytes.substr(0, nSize);
        EXPECT_EQ(refuses(m_objForm.nCommandID, strCut),
                  nSize != m_objForm.nShorterForm || nSize == 0)
            << nSize << " bytes";
    }
}

TEST_P(BinaryBodyTest, IsRefusedWhenALengthPassesItsEnd) {
    for (const char* szLength : {"00 00 00 40", "7F FF FF FF", "80 00 00 00", "FF FF FF FF",
                                 "FF FF FF F4", "FF FF FF F8"}) {
        std::string strBytes = m_objForm.strBytes;
        strBytes.replace(m_objForm.nLengthOffset, 4, fromHex(szLength));
        EXPECT_TRUE(refuses(m_objForm.nCommandID, strBytes)) << szLength;
    }
}

INSTANTIATE_TEST_SUITE_P(Forms, BinaryBodyTest,
                         testing::Values(
                             comForm, ptzForm, importForm, [] { return fileForm(15020); },
                             [] { return fileForm(47005); }, [] { return snapshotForm(31026); },
                             [] { return snapshotForm(32743); }, [] { return snapshotForm(32821); },
                             [] { return snapshotForm(33028); }),
                         [](const auto& form) {
                             return "Command" + std::to_string(form.param().nCommandID);
                         });

TEST(BodyFormTest, EachCommandIdHasItsForm) {
    const std::pair<std::uint32_t, const std::type_info*> forms[] = {
        {14006, &typeid(PTZOperationBodyParser)},
        {15020, &typeid(FileReadDataCommandBodyParser)},
        {47005, &typeid(FileReadDataCommandBodyParser)},
        {33019, &typeid(COMWriteDataCommandBodyParser)},
        {33026, &typeid(ParamImportReqBodyParser)},
        {31026, &typeid(RemoteSnapshotRespBodyParser)},
        {32743, &typeid(RemoteSnapshotRespBodyParser)},
        {32821, &typeid(RemoteSnapshotRespBodyParser)},
        {33028, &typeid(RemoteSnapshotRespBodyParser)},
        {10000, &typeid(SDKNormalXmlBodyParser)},
        {0, &typeid(SDKNormalXmlBodyParser)},
    };
    for (const auto& [nCommandID, pType] : forms) {
        const auto parser = createBodyParser(nCommandID);
        const ICommandBodyParser& objParser = *parser;
        EXPECT_EQ(typeid(objParser), *pType) << nCommandID;
    }
}

TEST(BinaryBodyFieldsTest, ASerialWriteComesBack) {
    Records records;
    ASSERT_TRUE(parse(33019, comForm().strBytes, records));
    const auto& write = recordAt<EtCOMWriteData>(records, 0);
    EXPECT_EQ(bytesOf(write.getComData()), "xyz");
    EXPECT_EQ(write.getComId(), 2U);
    EXPECT_EQ(write.getComType(), 0x80000003U);
}

TEST(BinaryBodyFieldsTest, APTZOperationComesBack) {
    Records records;
    ASSERT_TRUE(parse(14006, ptzForm().strBytes, records));
    const auto& operation = recordAt<EtPTZOperation>(records, 0);
    EXPECT_EQ(operation.getCameraId(), 5);
    EXPECT_EQ(operation.getPTZOperation(), "UP");
    EXPECT_EQ(operation.getName(), "gate");
    EXPECT_EQ(operation.getPTZId(), 6);
    EXPECT_EQ(recordAt<EtResult>(records, 1).getCode(), -2);
}

TEST(BinaryBodyFieldsTest, APTZAnswerOfAnOlderDeviceEndsAfterTheName) {
    Records records;
    ASSERT_TRUE(parse(14006, ptzForm().strBytes.substr(0, 22), records));
    EXPECT_EQ(recordAt<EtPTZOperation>(records, 0).getPTZId(), 1);
    EXPECT_EQ(recordAt<EtPTZOperation>(records, 0).getName(), "gate");
}

TEST(BinaryBodyFieldsTest, APTZOperationNeedsNoResultAndNoTexts) {
    CommandBuffer buffer;
    const std::string strEmpty =
        fromHex("00 00 00 00 00 00 00 05 00 00 00 00 00 00 00 00 00 00 00 06");
    ASSERT_TRUE(
        createBodyParser(14006)->createCommandBody(recordsOf(ptzOperation("", "")), buffer));
    EXPECT_EQ(::bytesOf(buffer), strEmpty);
    Records records;
    ASSERT_TRUE(parse(14006, strEmpty, records));
    EXPECT_EQ(recordAt<EtPTZOperation>(records, 0).getPTZOperation(), "");
}

TEST(BinaryBodyFieldsTest, APTZTextEndsAtItsFirstZeroByte) {
    Records records;
    std::string strBytes = ptzForm().strBytes;
    strBytes[12 + 1] = '\0';
    strBytes[18 + 2] = '\0';
    ASSERT_TRUE(parse(14006, strBytes, records));
    EXPECT_EQ(recordAt<EtPTZOperation>(records, 0).getPTZOperation(), "U");
    EXPECT_EQ(recordAt<EtPTZOperation>(records, 0).getName(), "ga");
    EXPECT_EQ(recordAt<EtPTZOperation>(records, 0).getPTZId(), 6);
}

TEST(BinaryBodyFieldsTest, AFilePieceComesBackWithItsCodeAsTheBytesStand) {
    Records records;
    ASSERT_TRUE(parse(15020, fileForm(15020).strBytes, records));
    EXPECT_EQ(bytesOf(recordAt<EtFileDataPack>(records, 0).getDataBuffer()), "data");
    EXPECT_EQ(recordAt<EtFileDataPack>(records, 0).getPackFlag(), 0xC1);
    const bool bLittleEndian = toNetworkOrder(std::uint32_t{1}) != 1;
    EXPECT_EQ(recordAt<EtResult>(records, 1).getCode(), bLittleEndian ? 0x01000000 : 1);
}

TEST(BinaryBodyFieldsTest, AnEmptyFilePieceIsAPieceAndNothingElseMayBeEmpty) {
    Records records;
    ASSERT_TRUE(parse(47005, fromHex("00 00 00 00 02 00 00 00 00"), records));
    EXPECT_EQ(recordAt<EtFileDataPack>(records, 0).getDataBuffer().getSize(), 0);
    EXPECT_EQ(recordAt<EtFileDataPack>(records, 0).getPackFlag(), 2);

    EXPECT_TRUE(refuses(31026, fromHex("00 00 00 00 00 00 00 07")));
    EXPECT_TRUE(refuses(33026, fromHex("00 00 00 00")));
    EXPECT_TRUE(refuses(33019, fromHex("00 00 00 00 00 00 00 01 00 00 00 02")));
}

TEST(BinaryBodyFieldsTest, AnImageComesBackWithItsCode) {
    Records records;
    ASSERT_TRUE(parse(32743, snapshotForm(32743).strBytes, records));
    EXPECT_EQ(bytesOf(recordAt<DataBuffer>(records, 0)), "IMG");
    EXPECT_EQ(recordAt<EtResult>(records, 1).getCode(), 258);
}

TEST(BinaryBodyFieldsTest, EmptyDataIsWrittenAsALengthOfZero) {
    CommandBuffer buffer;
    const Records records = recordsOf(DataBuffer(), EtResult());
    ASSERT_TRUE(createBodyParser(33028)->createCommandBody(records, buffer));
    EXPECT_EQ(::bytesOf(buffer), std::string(8, '\0'));
}

TEST(BinaryBodyFieldsTest, FilesAndImagesAreNotWrittenWithoutACode) {
    CommandBuffer buffer;
    EXPECT_FALSE(createBodyParser(15020)->createCommandBody(recordsOf(filePack("a")), buffer));
    EXPECT_FALSE(createBodyParser(31026)->createCommandBody(recordsOf(dataOf("a")), buffer));
}

TEST(BinaryRecordTest, CopiesAreDeepAndKeepTheirId) {
    const EtFileDataPack pack = filePack("data");
    EtFileDataPack copy(pack);
    copy.setDataBuffer(dataOf("changed"));
    EXPECT_EQ(bytesOf(pack.getDataBuffer()), "data");
    EXPECT_EQ(copy.getDomainId(), 1125U);
    EXPECT_EQ(EtCOMWriteData(comWrite("x")).getDomainId(), 1067U);
}

TEST(FindDomainTest, GivesTheFirstRecordOfAnIdAndListsByTheirElement) {
    const Records records = recordsOf(DomainVectorContainer<ChannelId>(), resultOf(1), resultOf(2),
                                      DomainVectorContainer<EtResult>());
    SafePointer<BaseDomain> found;
    EXPECT_FALSE(findDomain(416, 0, records, found));
    EXPECT_FALSE(findDomain(99999, 416, records, found));
    EXPECT_TRUE(found.isNull());
    ASSERT_TRUE(findDomain(801, 12345, records, found));
    EXPECT_EQ(found.get(), records[1].get());
    ASSERT_TRUE(findDomain(99999, 801, records, found));
    EXPECT_EQ(found.get(), records[3].get());
}

}  // namespace
