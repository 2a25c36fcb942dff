// The reference-counted owning pointer of the whole system.
#pragma once

#include <memory>
#include <type_traits>
#include <typeinfo>

class SafePointerSlot;

// Root of every SafePointer<T>, with the steps that do not depend on T.
class BaseSafePointer {
public:
    // A stale holder is told so even at its end, hence the destructors may throw. A class that
    // holds a SafePointer and overrides a virtual destructor says `~X() noexcept override`.
    virtual ~BaseSafePointer() noexcept(false);

protected:
    BaseSafePointer() = default;
    BaseSafePointer(const BaseSafePointer&) = default;
    BaseSafePointer& operator=(const BaseSafePointer&) = default;

    // Prints "SafePointer Report:", the type name and the message, and throws the same text.
    [[noreturn]] static void report(const char* pTypeName, const char* pMessage);

    // A slot of the registry with count 1; throws when the table is exhausted.
    static SafePointerSlot* takeSlot(void* pObject, const char* pTypeName);
    static void addReference(SafePointerSlot* pSlot, const void* pObject, const char* pTypeName);
    // True when the last reference is gone: the slot is then still locked, the object still there.
    static bool dropReference(SafePointerSlot& slot, const void* pObject);
    // Ends what a true dropReference() began, after the object was deleted.
    static void giveSlotBack(SafePointerSlot& slot, const char* pTypeName);
};

// A counted pointer to a T. The count stands in a slot of a process-wide registry of at most 20096
// slots, so that a holder which outlived its object finds that out.
//
// Ownership: wrapping a raw pointer takes the object over; the last holder deletes it. When
// wrapping throws, the object still belongs to the caller (wrapSafe() below frees it).
// Errors: every misuse throws KXRuntimeError with a fixed text. A default-constructed holder is
// null; isNull() and get() may be asked of it, reading, copying or assigning from it throws.
// Threads: holders of one object may live in any threads; one holder belongs to one thread at a
// time.
template <class T>
class SafePointer : public BaseSafePointer {
public:
    SafePointer() = default;

    explicit SafePointer(T* pObject) : m_pPointer(pObject) {
        if (pObject == nullptr) {
            report(typeName(), "Construct from NULL original pointer");
        }
        m_pSlot = takeSlot(pObject, typeName());
    }

    SafePointer(const SafePointer& other) : BaseSafePointer() { shareFrom(other); }

    // The converted pointer has to have the same address as the original.
    template <class U, class = std::enable_if_t<std::is_convertible_v<U*, T*>>>
    SafePointer(const SafePointer<U>& other) {
        shareFrom(other);
    }

    SafePointer& operator=(const SafePointer& other) {
        if (this == &other) {
            return *this;
        }
        if (other.isNull()) {
            report(typeName(), "Assigned NULL <T>pointer");
        }
        // The old object may be the one that holds other, so its fields are read first.
        T* const pPointer = other.m_pPointer;
        SafePointerSlot* const pSlot = other.m_pSlot;
        dec_reference();
        addReference(pSlot, pPointer, typeName());
        m_pPointer = pPointer;
        m_pSlot = pSlot;
        return *this;
    }

    ~SafePointer() noexcept(false) override { dec_reference(); }

    T* operator->() const {
        if (isNull()) {
            report(typeName(), "Use NULL pointer ->");
        }
        return m_pPointer;
    }

    T& operator*() const {
        if (isNull()) {
            report(typeName(), "Use NULL pointer *");
        }
        return *m_pPointer;
    }

    bool isNull() const noexcept { return m_pPointer == nullptr; }
    T* get() const noexcept { return m_pPointer; }

protected:
    template <class U>
    friend class SafePointer;

    static const char* typeName() noexcept { return typeid(T).name(); }

    void inc_reference() const { addReference(m_pSlot, m_pPointer, typeName()); }

    void dec_reference() {
        if (m_pPointer == nullptr || !dropReference(*m_pSlot, m_pPointer)) {
            return;
        }
        std::default_delete<T>()(m_pPointer);
        m_pPointer = nullptr;
        giveSlotBack(*m_pSlot, typeName());
    }

    T* m_pPointer = nullptr;
    SafePointerSlot* m_pSlot = nullptr;  // stays after the end of the object

private:
    template <class U>
    void shareFrom(const SafePointer<U>& other) {
        if (other.isNull()) {
            report(typeName(), "Construct from NULL <T>pointer");
        }
        other.inc_reference();
        m_pPointer = other.m_pPointer;
        m_pSlot = other.m_pSlot;
    }
};

// Wraps an owned object, as a SafePointer<T> when T is named: wrapSafe<ITransfer>(std::move(p)).
// The object is freed when wrapping throws.
template <class T = void, class U>
auto wrapSafe(std::unique_ptr<U> pObject) {
    using Target = std::conditional_t<std::is_void_v<T>, U, T>;
    SafePointer<Target> holder(pObject.get());
    static_cast<void>(pObject.release());
    return holder;
}
