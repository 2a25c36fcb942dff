// The exception of the base library, for programming errors.
#pragma once

#include <exception>
#include <string>

// Carries one text. Thrown for every misuse of safe pointers; see SafePointer.h.
class KXRuntimeError : public std::exception {
public:
    // A null text gives an empty message.
    explicit KXRuntimeError(const char* const& pMessage);
    KXRuntimeError(const KXRuntimeError& other);
    KXRuntimeError& operator=(const KXRuntimeError& other);
    ~KXRuntimeError() override;

    const char* what() const noexcept override;

private:
    std::string m_strMessage;
};
