// What the leak check at the host's exit needs to know. Without AddressSanitizer this file is empty.

#if defined(__SANITIZE_ADDRESS__)

// Libraries keep tables for their whole life, and after their unloading a report can neither find these nor name who
// took the memory. So nothing is unloaded.
extern "C" __attribute__((visibility("default"))) int dlclose(void*) noexcept { return 0; }

// The library by which JUCE loads LV2 plug-ins never gives its classes of plug-ins back.
extern "C" __attribute__((visibility("default"))) const char* __lsan_default_suppressions()
{
    return "leak:lilv_";
}

#endif
