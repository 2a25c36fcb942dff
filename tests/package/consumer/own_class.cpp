// Has a class of the name of a record, of which the library is to know nothing: own_class PORT
// PASSWORD
#include <fleetkit/TarnStruct.h>

#include <cstdio>
#include <memory>
#include <string>

#include "DeviceLogin.h"

namespace {

int nMade = 0;

}  // namespace

// Of another size than the record, and not inline, so that the program shows its names.
class RGBColor {
public:
    RGBColor();
    RGBColor(const RGBColor& other);
    RGBColor& operator=(const RGBColor& other);
    virtual ~RGBColor();

private:
    std::string m_arrNames[64];
};

RGBColor::RGBColor() {
    ++nMade;
}
RGBColor::RGBColor(const RGBColor&) {
    ++nMade;
}
RGBColor& RGBColor::operator=(const RGBColor&) {
    ++nMade;
    return *this;
}
RGBColor::~RGBColor() = default;

int main(int argc, char** argv) {
    if (argc != 3) {
        return 2;
    }
    const DeviceLogin login(argv[1], argv[2]);
    const auto pTexts = std::make_unique<NS_TARN_STRUCT::tagOSDUserParamList>();
    const int nCode = FleetKit::getAllOSDUserParam(login.handle(), *pTexts);
    std::printf("%d, %d texts, %d colours\n", nCode, pTexts->Count, nMade);
    return nCode;
}
