// The text forms of scalar values in attributes. None of them depends on the locale.
#pragma once

#include <string>

namespace XmlText {

std::string ofInt(int nValue);
std::string ofBool(bool bValue);
// Six decimals, as the devices print them.
std::string ofFloat(float fValue);
std::string ofDouble(double dValue);

// Leading digits; 0 if there are none, the low 32 bits if there are too many.
int toInt(const char* szText) noexcept;
// "true" or "false" in any case; any other word leaves the value as it was.
void toBool(const char* szText, bool& bValue) noexcept;
// A text without a number at its head leaves the value as it was.
void toFloat(const char* szText, float& fValue) noexcept;
void toDouble(const char* szText, double& dValue) noexcept;

}  // namespace XmlText
