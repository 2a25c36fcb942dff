// Between the plain structures of fixed layout and the records, for callers that know one form
// only. Callable from any thread; the arguments belong to the caller throughout. Running out of
// memory throws std::bad_alloc; what was converted by then stays.
#pragma once

#include <vector>

#include "Product/Technic/Export.h"
#include "device/TarnStruct.h"
#include "domain/AVStreamParam.h"
#include "domain/ChannelInfo.h"
#include "domain/OSDUserParam.h"

namespace fleetkit {

// Reading a structure appends a record for each element. No count and no text in it is trusted: the
// capacities bound what is read. A count below 1 and a null pointer append nothing.
FLEETKIT_EXPORT void toRecords(const NS_TARN_STRUCT::tagAllAVStreamParam* pStreams,
                               std::vector<AVStreamParam>* pRecords);
FLEETKIT_EXPORT void toRecords(const NS_TARN_STRUCT::tagAllChannelInfo* pChannels,
                               std::vector<ChannelInfo>* pRecords);
FLEETKIT_EXPORT void toRecords(const NS_TARN_STRUCT::tagOSDUserParamList* pParams,
                               std::vector<OSDUserParam>* pRecords);

// Writing one sets the counts to the number of elements written, at most the capacity, and leaves
// alone what stands behind them. Texts are cut to their fields, between characters of UTF-8, and
// end in a zero, those of channels only where there is space for it. With a null pointer nothing
// happens.
FLEETKIT_EXPORT void toStructure(const std::vector<AVStreamParam>* pRecords,
                                 NS_TARN_STRUCT::tagAllAVStreamParam* pStreams);
FLEETKIT_EXPORT void toStructure(const std::vector<ChannelInfo>* pRecords,
                                 NS_TARN_STRUCT::tagAllChannelInfo* pChannels);
FLEETKIT_EXPORT void toStructure(const std::vector<OSDUserParam>* pRecords,
                                 NS_TARN_STRUCT::tagOSDUserParamList* pParams);

}  // namespace fleetkit
