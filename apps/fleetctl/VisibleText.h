// What a device sent, in a form that a terminal shows and does not obey.
#pragma once

#include <string>

#include "RecordJson.h"

// A byte that belongs to no character of UTF-8 becomes \xE9, a character that would steer a
// terminal or turn the direction of its texts \u009B. Everything else stays as it is.
std::string visibleText(const std::string& strText);

// One line of JSON that holds these values: valid whatever bytes the texts have. A byte that
// belongs to no character of UTF-8 is the text \xE9 here as well; characters that steer a terminal
// are JSON's own escapes.
std::string jsonText(Json json);
