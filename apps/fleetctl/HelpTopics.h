// The pages of `fleetctl help`.
#pragma once

#include <string>
#include <vector>

struct HelpTopic {
    const char* szName;
    const char* szSummary;
    const char* szText;
};

const std::vector<HelpTopic>& helpTopics();
