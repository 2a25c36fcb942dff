// Which form of body a command has.
#include "protocol/BodyParserFactory.h"

#include <algorithm>
#include <new>

#include "protocol/COMWriteDataCommandBodyParser.h"
#include "protocol/FileReadDataCommandBodyParser.h"
#include "protocol/PTZOperationBodyParser.h"
#include "protocol/ParamImportReqBodyParser.h"
#include "protocol/RemoteSnapshotRespBodyParser.h"
#include "protocol/SDKNormalXmlBodyParser.h"

using namespace fleetkit;

namespace {

using BodyParserMaker = std::unique_ptr<ICommandBodyParser> (*)();

template <class Parser>
std::unique_ptr<ICommandBodyParser> make() {
    return std::unique_ptr<ICommandBodyParser>(new (std::nothrow) Parser());
}

struct BinaryForm {
    std::uint32_t nCommandID;
    BodyParserMaker makeParser;
};

constexpr BinaryForm BinaryForms[] = {
    {14006, make<PTZOperationBodyParser>},         // operate PTZ, request and answer
    {15020, make<FileReadDataCommandBodyParser>},  // answer of a file read
    {31026, make<RemoteSnapshotRespBodyParser>},   // answers that carry an image
    {32743, make<RemoteSnapshotRespBodyParser>},  {32821, make<RemoteSnapshotRespBodyParser>},
    {33019, make<COMWriteDataCommandBodyParser>},  // write to a serial port
    {33026, make<ParamImportReqBodyParser>},       // import parameters
    {33028, make<RemoteSnapshotRespBodyParser>},   // answer of a parameter export
    {47005, make<FileReadDataCommandBodyParser>},  // request that carries file data
};

const BinaryForm* findBinaryForm(std::uint32_t nCommandID) {
    const auto form = std::ranges::find(BinaryForms, nCommandID, &BinaryForm::nCommandID);
    return form == std::end(BinaryForms) ? nullptr : &*form;
}

}  // namespace

std::unique_ptr<ICommandBodyParser> createBodyParser(std::uint32_t nCommandID) {
    const BinaryForm* pForm = findBinaryForm(nCommandID);
    return pForm != nullptr ? pForm->makeParser() : make<SDKNormalXmlBodyParser>();
}

bool hasBinaryForm(std::uint32_t nCommandID) {
    return findBinaryForm(nCommandID) != nullptr;
}
