// The files of factory/, which are part of the program.
#pragma once

#include <string>

// The text of factory/NAME.xml. Throws std::out_of_range when there is none.
std::string factoryText(const std::string& strName);
