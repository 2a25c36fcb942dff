// Whether records fit into the fixed structures that the library takes them in.
#pragma once

#include <fleetkit/domain/AVStreamParam.h>
#include <fleetkit/domain/OSDUserParam.h>

#include <vector>

// UsageError when there are more elements, or longer texts, than the structure has space for: the
// library would cut them without a word.
void requireFit(const std::vector<AVStreamParam>& vecStreams);
void requireFit(const std::vector<OSDUserParam>& vecParams);
