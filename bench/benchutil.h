#pragma once

#include <cstdio>
#include <cstring>
#include <string>

// Memory figures of this process from /proc, in kibibytes.
namespace benchutil {

inline long readStatusField(const char *field)
{
    FILE *file = std::fopen("/proc/self/status", "r");
    if (!file)
        return -1;
    char line[256];
    long value = -1;
    const size_t length = std::strlen(field);
    while (std::fgets(line, sizeof line, file)) {
        if (std::strncmp(line, field, length) == 0 && line[length] == ':') {
            value = std::strtol(line + length + 1, nullptr, 10);
            break;
        }
    }
    std::fclose(file);
    return value;
}

// Resident memory now.
inline long residentKiB() { return readStatusField("VmRSS"); }
// Highest resident memory so far.
inline long peakResidentKiB() { return readStatusField("VmHWM"); }

// Resets the peak so that the next peakResidentKiB() measures from here (Linux 4.0+).
inline void resetPeak()
{
    if (FILE *file = std::fopen("/proc/self/clear_refs", "w")) {
        std::fputs("5", file);
        std::fclose(file);
    }
}

} // namespace benchutil
