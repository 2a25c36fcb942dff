// The files of factory/, which are part of the program.
#pragma once

#include <string>

// The text of factory/NAME.xml.
std::string factoryText(const std::string& strName);
