// Out of line, so that the type has one identity on both sides of the library's border.
#include "Product/Technic/KXRuntimeError.h"

KXRuntimeError::KXRuntimeError(const char* const& pMessage)
    : m_strMessage(pMessage == nullptr ? "" : pMessage) {}

KXRuntimeError::KXRuntimeError(const KXRuntimeError& other) = default;

KXRuntimeError& KXRuntimeError::operator=(const KXRuntimeError& other) = default;

KXRuntimeError::~KXRuntimeError() = default;

const char* KXRuntimeError::what() const noexcept {
    return m_strMessage.c_str();
}
