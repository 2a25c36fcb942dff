// Libraries opened at run time, by the loader of Linux.
#include "Product/Technic/platform/DynamicLibrary.h"

#include <dlfcn.h>

#include <utility>

DynamicLibrary::~DynamicLibrary() {
    close();
}

DynamicLibrary::DynamicLibrary(DynamicLibrary&& other) noexcept
    : m_pHandle(std::exchange(other.m_pHandle, nullptr)) {}

DynamicLibrary& DynamicLibrary::operator=(DynamicLibrary&& other) noexcept {
    if (this != &other) {
        close();
        m_pHandle = std::exchange(other.m_pHandle, nullptr);
    }
    return *this;
}

bool DynamicLibrary::open(const std::string& strName) {
    close();
    // An empty name would be the program itself.
    m_pHandle = strName.empty() ? nullptr : ::dlopen(strName.c_str(), RTLD_NOW | RTLD_LOCAL);
    return isOpen();
}

void DynamicLibrary::close() noexcept {
    if (isOpen()) {
        ::dlclose(std::exchange(m_pHandle, nullptr));
    }
}

void* DynamicLibrary::symbol(const char* pszName) const noexcept {
    return isOpen() ? ::dlsym(m_pHandle, pszName) : nullptr;
}
