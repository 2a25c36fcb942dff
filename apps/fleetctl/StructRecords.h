// The fixed structures of the library as records, and records as structures, so that fleetctl knows
// one form of a value only.
#pragma once

#include <fleetkit/TarnStruct.h>
#include <fleetkit/domain/AVStreamParam.h>
#include <fleetkit/domain/ChannelInfo.h>
#include <fleetkit/domain/OSDUserParam.h>

#include <vector>

std::vector<AVStreamParam> recordsOf(const NS_TARN_STRUCT::tagAllAVStreamParam& streams);
std::vector<ChannelInfo> recordsOf(const NS_TARN_STRUCT::tagAllChannelInfo& channels);
std::vector<OSDUserParam> recordsOf(const NS_TARN_STRUCT::tagOSDUserParamList& params);

// UsageError when there are more elements, or longer texts, than the structure has room for.
void fillStruct(const std::vector<AVStreamParam>& vecRecords,
                NS_TARN_STRUCT::tagAllAVStreamParam& streams);
void fillStruct(const std::vector<OSDUserParam>& vecRecords,
                NS_TARN_STRUCT::tagOSDUserParamList& params);
