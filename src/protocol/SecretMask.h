// Bodies as the log may show them.
#pragma once

#include <string>

// A body with "***" in place of each field that its record keeps secret: its cipher has one key for
// all devices, so whoever reads a log could read passwords. Any text is taken, whole or broken.
std::string withoutSecrets(std::string strBody);
