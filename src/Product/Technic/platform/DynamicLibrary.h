// A shared library that is opened at run time and looked into by name.
#pragma once

#include <string>

// Owns one loaded library; closes it in the end. Movable, not copyable. Pointers that `symbol` gave
// are dead once the library is closed. One thread at a time.
class DynamicLibrary {
public:
    DynamicLibrary() = default;
    ~DynamicLibrary();
    DynamicLibrary(DynamicLibrary&& other) noexcept;
    DynamicLibrary& operator=(DynamicLibrary&& other) noexcept;
    DynamicLibrary(const DynamicLibrary&) = delete;
    DynamicLibrary& operator=(const DynamicLibrary&) = delete;

    // By file name, along the system's search path, or by path. Closes what was open before. False
    // when the system finds no such library or cannot load it.
    bool open(const std::string& strName);
    void close() noexcept;
    bool isOpen() const noexcept { return m_pHandle != nullptr; }

    // The address of an exported name; null when the library lacks it or none is open.
    void* symbol(const char* pszName) const noexcept;

    // The same as a pointer to a function: `lib.function<int(int)>("twice")`.
    template <class Function>
    Function* function(const char* pszName) const noexcept {
        return reinterpret_cast<Function*>(symbol(pszName));
    }

private:
    void* m_pHandle = nullptr;
};
