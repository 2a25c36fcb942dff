// Several numbers in one attribute, by a pattern such as "(%d, %d)" and a separator.
#pragma once

#include <string>
#include <vector>

namespace JoinedText {

// The numbers in place of each %d, in order.
std::string format(const char* szPattern, const std::vector<int>& vecNumbers);

// The numbers of a piece that follows the pattern up to its last number; fewer if it does not.
std::vector<int> scan(const char* szPattern, const std::string& strPiece);

// An empty text has no pieces.
std::vector<std::string> split(const std::string& strText, const std::string& strSeparator);
std::string join(const std::vector<std::string>& vecPieces, const std::string& strSeparator);

}  // namespace JoinedText
