// Texts of callers and users: addresses, base64, bodies on their way into the log, and what is
// typed at fleetctl.
#include <fleetkit/domain/NTPParam.h>

#include "DeviceSession.h"
#include "FieldAssignment.h"
#include "Product/Technic/Base64.h"
#include "Product/Technic/IPTool.h"
#include "Property.h"
#include "UsageError.h"
#include "VisibleText.h"
#include "fuzz/Fuzz.h"
#include "protocol/SecretMask.h"

namespace {

void decodeBase64(const std::string& strText) {
    std::string strDecoded(strText.size() + 4, '\0');
    auto nSize = static_cast<std::int32_t>(strDecoded.size());
    const auto nLength = static_cast<std::int32_t>(strText.size());
    auto* pDecoded = reinterpret_cast<std::uint8_t*>(strDecoded.data());
    if (base64Decode(reinterpret_cast<const std::uint8_t*>(strText.data()), nLength, pDecoded,
                     nSize) == Base64Result::Done &&
        nLength > 0) {
        require(nSize >= 0 && static_cast<std::size_t>(nSize) <= strDecoded.size(), "it fits");
    }
}

void readAddress(const std::string& strText) {
    int nVersion = 0;
    InetAddr address;
    IPTool tool;
    // Whatever is no address would be asked of the resolver, and so of the network.
    if (tool.checkIPAddress(strText.c_str(), nVersion)) {
        require(nVersion == 1 || nVersion == 2, "an address has a version");
        require(tool.getInetAddr(strText.c_str(), address), "an address needs no look-up");
    }
    withoutSecrets(strText);
    visibleText(strText);
}

// Every value is converted, or refused in words.
void assignTyped(const std::string& strText) try {
    const auto& descriptor = NTPParam::descriptor();
    const Shape shape{false, &descriptor, {}};
    NTPParam record;
    Json value = toJson(shape, &record);
    assign(parseAssignment(strText, shape, "ntp"), shape, "ntp", value);
} catch (const UsageError&) {
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* pBytes, std::size_t nLength) {
    const std::string strText = Input(pBytes, nLength).rest();
    decodeBase64(strText);
    readAddress(strText.substr(0, strText.find('\0')));
    assignTyped(strText);
    return 0;
}
