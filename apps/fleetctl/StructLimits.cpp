// Capacities are those of the structures themselves.
#include "StructLimits.h"

#include <fleetkit/TarnStruct.h>

#include <string>

#include "UsageError.h"

using namespace NS_TARN_STRUCT;

namespace {

void requireText(const std::string& strText, std::size_t nField, const char* szName) {
    if (strText.size() >= nField) {
        throw UsageError(std::string(szName) + " has space for " + std::to_string(nField - 1) +
                         " bytes, '" + strText + "' is longer");
    }
}

template <class Record>
void requireElements(const std::vector<Record>& vecRecords, std::size_t nCapacity,
                     const char* szName) {
    if (vecRecords.size() > nCapacity) {
        throw UsageError(std::string(szName) + " has space for " + std::to_string(nCapacity) +
                         " elements, not for " + std::to_string(vecRecords.size()));
    }
}

}  // namespace

void requireFit(const std::vector<AVStreamParam>& vecStreams) {
    requireElements(vecStreams, MaxAVStreams, "streams");
    for (const AVStreamParam& stream : vecStreams) {
        requireText(stream.getStreamName(), sizeof(tagAVStreamParam::StreamName), "StreamName");
    }
}

void requireFit(const std::vector<OSDUserParam>& vecParams) {
    requireElements(vecParams, MaxOSDUserParams, "osd");
    for (const OSDUserParam& param : vecParams) {
        requireElements(param.getCanvasProperList(), MaxCanvases, "CanvasProperList");
        for (const CanvasProper& canvas : param.getCanvasProperList()) {
            requireElements(canvas.getOSDInfoList(), MaxOSDInfos, "OSDInfoList");
            for (const OSDInfo& info : canvas.getOSDInfoList()) {
                requireText(info.getInfo(), sizeof(tagOSDInfo::Info), "Info");
            }
        }
    }
}
