#pragma once

#include <QString>

// What this build of the program is.
namespace BuildInfo {
QString productName(); // "Tabrelle"
QString version(); // "0.1.0"
int versionMajor();
int versionMinor();
int versionPatch();
QString buildDateTime(); // "yyyy-MM-dd HH:mm:ss" of the compile
QString supportAddress();
} // namespace BuildInfo
