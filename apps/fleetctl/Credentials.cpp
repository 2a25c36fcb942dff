// Looks passwords up.
#include "Credentials.h"

#include <cstdlib>
#include <fstream>
#include <optional>

#include "Terminal.h"
#include "UsageError.h"

namespace {

struct Source {
    const char* szWhat;
    const char* szVariable;
    const char* szOption;
};

constexpr Source Login{"password", "FLEETCTL_PASSWORD", "--password-file"};
constexpr Source New{"new password", "FLEETCTL_NEW_PASSWORD", "--new-password-file"};

// The first line of the file, without its line end.
std::string readPasswordFile(const std::string& strFile) {
    std::ifstream file(strFile);
    std::string strPassword;
    if (!file || (!std::getline(file, strPassword) && !file.eof())) {
        throw UsageError("cannot read the password file " + strFile);
    }
    if (!strPassword.empty() && strPassword.back() == '\r') {
        strPassword.pop_back();
    }
    return strPassword;
}

std::optional<std::string> givenPassword(const Source& source, const std::string& strFile) {
    if (!strFile.empty()) {
        return readPasswordFile(strFile);
    }
    const char* pszValue = std::getenv(source.szVariable);
    return pszValue != nullptr ? std::optional<std::string>(pszValue) : std::nullopt;
}

std::string askFor(const Source& source, const std::string& strQuestion) {
    if (!canAsk()) {
        throw UsageError(std::string("no ") + source.szWhat + ": set " + source.szVariable +
                         " or use " + source.szOption);
    }
    const std::optional<std::string> answer = askSecret(strQuestion);
    if (!answer) {
        throw UsageError(std::string("no ") + source.szWhat);
    }
    return *answer;
}

}  // namespace

std::string loginPassword(const std::string& strFile, const std::string& strUser) {
    const std::optional<std::string> given = givenPassword(Login, strFile);
    return given ? *given : askFor(Login, "Password of " + strUser);
}

std::string newPassword(const std::string& strFile) {
    const std::optional<std::string> given = givenPassword(New, strFile);
    if (given) {
        return *given;
    }
    std::string strFirst = askFor(New, "New password");
    if (askFor(New, "New password again") != strFirst) {
        throw UsageError("the two new passwords differ");
    }
    return strFirst;
}
