// Where passwords come from: a file, the environment, or a question at the terminal, in this order.
// Never from an argument, which other users of the machine could see.
#pragma once

#include <string>

// The password to log in with. UsageError when it is given nowhere and nobody can be asked, or when
// the file cannot be read.
std::string loginPassword(const std::string& strFile, const std::string& strUser);

// The password to be set; asked for twice.
std::string newPassword(const std::string& strFile);
