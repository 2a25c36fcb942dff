// What ThreadSanitizer is told to leave unreported in the tests.

extern "C" __attribute__((visibility("default"))) const char* __tsan_default_suppressions();

// Slots of safe pointers are used again, so no order of two slots' mutexes lasts: what once held an
// object may later be held by it.
const char* __tsan_default_suppressions() {
    return "deadlock:BaseSafePointer::\n";
}
