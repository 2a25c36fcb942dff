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

void BaseSafePointer::addReference(SafePointerSlot* pobjSlot, const void* pObject,
                                   const char* pTypeName) {
    if (pobjSlot == nullptr) {
        report(pTypeName, "Already destructed 1");
    }
    if (pobjSlot->lock() == KXMutexHandle::NotValid) {
        report(pTypeName, "Already destructed 2");
    }
    if (pobjSlot->getPointer() != pObject) {
        // Memory has gone wrong: the slot stays locked on purpose.
        throw KXRuntimeError("not valid pointer in inc_reference ");
    }
    const bool bAlive = pobjSlot->increment() != 0;
    pobjSlot->unlock();
    if (!bAlive) {
        report(pTypeName, "Already destructed 3");
    }
}

bool BaseSafePointer::dropReference(SafePointerSlot& objSlot, const void* pObject) {
    objSlot.lock();
    if (objSlot.getPointer() != pObject) {
        // Memory has gone wrong: the slot stays locked on purpose.
        throw KXRuntimeError("not valid pointer in dec_reference");
    }
    if (objSlot.decrement() == 0) {
        return true;
    }
    objSlot.unlock();
    return false;
}

void BaseSafePointer::giveSlotBack(SafePointerSlot& objSlot, const char* pTypeName) {
    SafePointerRegistry::instance().release(objSlot, pTypeName);
    objSlot.unlock();
}
