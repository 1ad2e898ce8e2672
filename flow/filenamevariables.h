#pragma once

#include <QDateTime>
#include <QList>
#include <QString>

// What the braces in a file name can stand for: "{date}", "{version}", "{sales.fname}", ...
struct FileNameContext
{
    struct Input
    {
        QString alias;
        QString path;
        QString sheet;
    };

    QDateTime now = QDateTime::currentDateTime();
    QString documentPath;
    int versionMajor = 0;
    int versionMinor = 0;
    int versionPatch = 0;
    QList<Input> inputs; // inputs of the flow that have an alias
};

// Replaces every known "{variable}" in text; unknown ones are left as they stand.
QString expandFileNameVariables(const QString &text, const FileNameContext &context);
