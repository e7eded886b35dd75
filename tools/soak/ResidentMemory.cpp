#include "tools/soak/ResidentMemory.h"

#if defined(_WIN32)
#include <windows.h>

#include <psapi.h>
#elif defined(__APPLE__)
#include <mach/mach.h>
#else
#include <fstream>
#include <unistd.h>
#endif

namespace ambrel::soak
{

double getResidentMemory()
{
    constexpr double bytesPerMebibyte = 1024.0 * 1024.0;
#if defined(_WIN32)
    PROCESS_MEMORY_COUNTERS counters{};
    if (K32GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters) == 0)
        return 0.0;
    return static_cast<double>(counters.WorkingSetSize) / bytesPerMebibyte;
#elif defined(__APPLE__)
    mach_task_basic_info info{};
    mach_msg_type_number_t count = MACH_TASK_BASIC_INFO_COUNT;
    if (task_info(mach_task_self(), MACH_TASK_BASIC_INFO, reinterpret_cast<task_info_t>(&info), &count) !=
        KERN_SUCCESS)
        return 0.0;
    return static_cast<double>(info.resident_size) / bytesPerMebibyte;
#else
    std::ifstream pages("/proc/self/statm");
    double all = 0.0;
    double resident = 0.0;
    pages >> all >> resident;
    return resident * static_cast<double>(sysconf(_SC_PAGESIZE)) / bytesPerMebibyte;
#endif
}

} // namespace ambrel::soak
