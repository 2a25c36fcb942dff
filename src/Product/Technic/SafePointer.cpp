// The steps of safe pointers that are the same for every type.
#include "Product/Technic/SafePointer.h"

#include <cstdio>
#include <string>

#include "Product/Technic/KXRuntimeError.h"
#include "Product/Technic/SafePointerRegistry.h"

BaseSafePointer::~BaseSafePointer() noexcept(false) = default;

void BaseSafePointer::report(const char* pTypeName, const char* pMessage) {
    const std::string strText =
        std::string("SafePointer Report:").append(pTypeName).append(" ").append(pMessage);
    std::printf("%s\n", strText.c_str());
    throw KXRuntimeError(strText.c_str());
}

SafePointerSlot* BaseSafePointer::takeSlot(void* pObject, const char* pTypeName) {
    return SafePointerRegistry::instance().allocate(pObject, pTypeName);
}

void BaseSafePointer::addReference(SafePointerSlot* pSlot, const void* pObject,
                                   const char* pTypeName) {
    if (pSlot == nullptr) {
        report(pTypeName, "Already destructed 1");
    }
    if (pSlot->lock() == KXMutexHandle::NotValid) {
        report(pTypeName, "Already destructed 2");
    }
    if (pSlot->getPointer() != pObject) {
        // Memory has gone wrong: the slot stays locked on purpose.
        throw KXRuntimeError("not valid pointer in inc_reference ");
    }
    const bool bAlive = pSlot->increment() != 0;
    pSlot->unlock();
    if (!bAlive) {
        report(pTypeName, "Already destructed 3");
    }
}

bool BaseSafePointer::dropReference(SafePointerSlot& slot, const void* pObject) {
    slot.lock();
    if (slot.getPointer() != pObject) {
        // Memory has gone wrong: the slot stays locked on purpose.
        throw KXRuntimeError("not valid pointer in dec_reference");
    }
    if (slot.decrement() == 0) {
        return true;
    }
    slot.unlock();
    return false;
}

void BaseSafePointer::giveSlotBack(SafePointerSlot& slot, const char* pTypeName) {
    SafePointerRegistry::instance().release(slot, pTypeName);
    slot.unlock();
}
