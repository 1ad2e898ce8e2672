#pragma once

#include <QProcess>
#include <QStringList>

#include <benchmark/benchmark.h>

#include <algorithm>
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
inline long residentKiB()
{
    return readStatusField("VmRSS");
}
// Highest resident memory so far.
inline long peakResidentKiB()
{
    return readStatusField("VmHWM");
}

// Resets the peak so that the next peakResidentKiB() measures from here (Linux 4.0+).
inline void resetPeak()
{
    if (FILE *file = std::fopen("/proc/self/clear_refs", "w")) {
        std::fputs("5", file);
        std::fclose(file);
    }
}

// Runs program once per iteration; each run times its own work and prints "seconds rows
// peak-KiB" on one line. The iteration takes that time (for UseManualTime); rows and the
// highest peak, in MiB, come back. False, with the benchmark skipped, when a run fails.
inline bool timeChildRuns(benchmark::State &state, const QString &program, const QStringList &arguments,
    const char *failure, double &rows, double &peakMiB)
{
    for (auto _ : state) {
        QProcess child;
        child.start(program, arguments);
        if (!child.waitForFinished(600000) || child.exitCode() != 0) {
            state.SkipWithError(failure);
            return false;
        }
        const QStringList fields = QString::fromUtf8(child.readAllStandardOutput()).simplified().split(' ');
        state.SetIterationTime(fields.value(0).toDouble());
        rows = fields.value(1).toDouble();
        peakMiB = std::max(peakMiB, fields.value(2).toDouble() / 1024.0);
    }
    return true;
}

} // namespace benchutil
