// The five binary forms of a body, byte by byte.
#include <gtest/gtest.h>

#include "domain/EtCOMWriteData.h"
#include "domain/EtFileDataPack.h"
#include "domain/EtPTZOperation.h"
#include "protocol/BodyParserFactory.h"
#include "support/WireCommands.h"

namespace {

EtCOMWriteData comWrite() {
    return with(&EtCOMWriteData::setComData, dataOf("xyz"), &EtCOMWriteData::setComId, 2U,
                &EtCOMWriteData::setComType, 0x80000003);
}

EtPTZOperation ptzOperation() {
    return with(&EtPTZOperation::setCameraId, 5, &EtPTZOperation::setPTZId, 6,
                &EtPTZOperation::setPTZOperation, "UP", &EtPTZOperation::setName, "gate");
}

EtFileDataPack filePack(const std::string& strData) {
    return with(&EtFileDataPack::setPackFlag, 0xC1, &EtFileDataPack::setDataBuffer,
                dataOf(strData));
}

// One command id with the bytes of its body.
struct Form {
    std::uint32_t nCommandID;
    Records records;  // unneeded ones among them, in an order that is not that of the bytes
    std::string strBytes;
    std::vector<std::uint32_t> vecReadIds;         // of the records that come back
    std::size_t nLengthOffset = 0;                 // of the first length in the body
    std::size_t nShorterForm = std::string::npos;  // a shorter body that is whole as well
};

std::vector<Form> forms() {
    const Records com = recordsOf(ChannelId(), comWrite());
    const std::string strCom = fromHex("00 00 00 03 78 79 7A 00 00 00 02 80 00 00 03");
    const Records ptz = recordsOf(resultOf(-2), ptzOperation());
    const std::string strPTZ =
        fromHex("FF FF FF FE 00 00 00 05 00 00 00 02 55 50 00 00 00 04 67 61 74 65 00 00 00 06");
    const Records import = recordsOf(resultOf(1), dataOf("ab"));
    const std::string strImport = fromHex("00 00 00 02 61 62");
    const Records file = recordsOf(resultOf(0x01020201), filePack("data"));
    const std::string strFile = fromHex("00 00 00 04 C1 01 02 02 01 64 61 74 61");
    const Records image = recordsOf(resultOf(258), dataOf("IMG"));
    const std::string strImage = fromHex("00 00 00 03 00 00 01 02 49 4D 47");
    return {
        {33019, com, strCom, {1067}},         {14006, ptz, strPTZ, {1009, 801}, 8, 22},
        {33026, import, strImport, {416}},    {15020, file, strFile, {1125, 801}},
        {47005, file, strFile, {1125, 801}},  {31026, image, strImage, {416, 801}},
        {32743, image, strImage, {416, 801}}, {32821, image, strImage, {416, 801}},
        {33028, image, strImage, {416, 801}},
    };
}

// The bytes of a body, in a block of their size; empty when it is refused, without a block.
std::string written(std::uint32_t nCommandID, const Records& records) {
    CommandBuffer buffer;
    const bool bWritten = createBodyParser(nCommandID)->createCommandBody(records, buffer);
    EXPECT_EQ(bWritten, buffer.data() != nullptr);
    EXPECT_EQ(buffer.getCapacity(), buffer.getLength());
    return bytesOf(buffer);
}

Records parsed(std::uint32_t nCommandID, const std::string& strBytes) {
    Records records;
    EXPECT_TRUE(createBodyParser(nCommandID)->parseCommandBody(payloadOf(strBytes), records));
    return records;
}

bool refuses(std::uint32_t nCommandID, const std::string& strBytes) {
    Records records;
    return !createBodyParser(nCommandID)->parseCommandBody(payloadOf(strBytes), records) &&
           records.empty();
}

TEST(BinaryBodyTest, IsMadeOfTheRecordsThatItNeedsInAnyOrderAndMakesThemInAFixedOne) {
    for (const auto& [nCommandID, records, strBytes, vecReadIds, nOffset, nShorter] : forms()) {
        SCOPED_TRACE(nCommandID);
        EXPECT_EQ(written(nCommandID, records), strBytes);
        EXPECT_EQ(written(nCommandID, Records(records.rbegin(), records.rend())), strBytes);
        EXPECT_EQ(written(nCommandID, {}), "");
        EXPECT_EQ(written(nCommandID, recordsOf(resultOf(0))), "");
        const Records read = parsed(nCommandID, strBytes);
        EXPECT_EQ(idsOf(read), vecReadIds);
        EXPECT_EQ(written(nCommandID, read), strBytes);
    }
    EXPECT_EQ(written(15020, recordsOf(filePack("a"))), "");
    EXPECT_EQ(written(31026, recordsOf(dataOf("a"))), "");
}

TEST(BinaryBodyTest, IsRefusedWhenItEndsTooEarlyOrALengthPassesItsEnd) {
    for (auto& [nCommandID, records, strBytes, vecReadIds, nOffset, nShorter] : forms()) {
        SCOPED_TRACE(nCommandID);
        for (std::size_t nSize = 0; nSize < strBytes.size(); ++nSize) {
            EXPECT_EQ(refuses(nCommandID, strBytes.substr(0, nSize)), nSize != nShorter) << nSize;
        }
        for (const char* szLength : {"00 00 00 40", "7F FF FF FF", "80 00 00 00", "FF FF FF FF",
                                     "FF FF FF F4", "FF FF FF F8"}) {
            strBytes.replace(nOffset, 4, fromHex(szLength));
            EXPECT_TRUE(refuses(nCommandID, strBytes)) << szLength;
        }
    }
}

TEST(BinaryBodyTest, MayHoldNoDataOnlyInAFilePiece) {
    EXPECT_EQ(written(33028, recordsOf(DataBuffer(), EtResult())), std::string(8, '\0'));
    EXPECT_TRUE(refuses(31026, fromHex("00 00 00 00 00 00 00 07")));
    EXPECT_TRUE(refuses(33026, fromHex("00 00 00 00")));
    EXPECT_TRUE(refuses(33019, fromHex("00 00 00 00 00 00 00 01 00 00 00 02")));
}

TEST(BinaryBodyTest, IsReadWithWhatItsFormLeavesOpen) {
    const std::string strPiece = fromHex("00 00 00 01 C1 00 00 00 01 61");
    EXPECT_EQ(written(15020, recordsOf(filePack("a"), resultOf(1))), strPiece);
    const std::string strEmptyPiece = fromHex("00 00 00 00 C1 00 00 00 00");
    const std::string strNoTexts =
        fromHex("00 00 00 00 00 00 00 05 00 00 00 00 00 00 00 00 00 00 00 06");
    const struct {
        const char* szWhat;
        std::uint32_t nCommandID;
        std::string strBytes;
        std::string strWritten;  // when the records that were read are written
    } cases[] = {
        {"no data", 47005, strEmptyPiece, strEmptyPiece},
        {"a code as its bytes stand", 15020, strPiece, fromHex("00 00 00 01 C1 01 00 00 00 61")},
        {"no texts", 14006, strNoTexts, strNoTexts},
        {"no last number", 14006, strNoTexts.substr(0, 16),
         strNoTexts.substr(0, 16) + fromHex("00 00 00 01")},
        {"zero bytes in texts", 14006,
         fromHex("00 00 00 00 00 00 00 05 00 00 00 02 55 00 00 00 00 04 67 61 00 65 00 00 00 06"),
         fromHex("00 00 00 00 00 00 00 05 00 00 00 01 55 00 00 00 02 67 61 00 00 00 06")},
    };
    for (const auto& [szWhat, nCommandID, strBytes, strWritten] : cases) {
        EXPECT_EQ(written(nCommandID, parsed(nCommandID, strBytes)), strWritten) << szWhat;
    }
}

}  // namespace
