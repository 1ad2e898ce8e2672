#pragma once

#include "flow/filenamevariables.h"
#include "flow/graphscene.h"
#include "flow/ionode.h"
#include "outputs/outputoptions.h"

#include <functional>

class QIODevice;
class Settings;

// The flow item that writes its one upstream dataset to a file, or to many files named by
// a column. Writing is done by the writer registered for the node's format; the node checks
// what can be checked before, expands the file name variables, decides on the byte order
// mark and the header, and keeps the paths it wrote for the run's report.
class OutputNode : public IONode
{
    Q_OBJECT
public:
    enum WriteMode : int { Disabled = 0, Overwrite = 1, Append = 2, New = 3 };
    enum OutputTo : int { SingleFile = 0, MultipleFiles = 1 };

    // Writes dataset to the file targetPath() names (and targetSheet() for Excel), adding to
    // the two message lists and calling addWrittenFile for the file written; returns false
    // when writing failed. Called once per file.
    using Writer = std::function<bool(
        OutputNode &node, const Dataset &dataset, QStringList &warnings, QStringList &information)>;
    // A text format's writer: writes the table to a device that is open and positioned
    // (after the byte order mark, at the end of the file when appending; an appended file
    // is also open for reading). Returns false when the device fails, or with a warning
    // of its own. The device is unbuffered when appending: write in large blocks.
    using DeviceWriter = std::function<bool(
        const Dataset &table, const OutputOptions &options, QIODevice &device, WriteReport &report)>;
    // A workbook writer: writes the table to the workbook at path, sheet options.sheet,
    // itself, leaving the old file as it was when it fails.
    using WorkbookWriter = std::function<bool(
        const QString &path, const Dataset &table, const OutputOptions &options, WriteReport &report)>;
    // Shows the multi-file summary with its title; false cancels the write.
    using Confirmation = std::function<bool(const QString &title, const QString &text)>;

    explicit OutputNode(QGraphicsItem *parent = nullptr);

    QString typeName() const override { return QStringLiteral("Output"); }
    QString displayTypeName() const override { return tr("Output"); }
    // The given name, else the file name, or "<no file name>".
    QString name() const override;
    int maxUpstream() const override { return 1; }
    int maxDownstream() const override { return 0; }

    // Every write option. Those IONode keeps (path, sheet, format, delimiter, custom
    // delimiter, encoding) are read from it and set on it, so the two never disagree.
    OutputOptions options() const;
    void setOptions(const OutputOptions &options);

    int writeMode() const { return m_options.writeMode; }
    // An output that writes nothing is left out of the run's report.
    bool isReportedInRun() const override { return writeMode() != Disabled; }
    // A number outside 0..3 is taken as Overwrite.
    void setWriteMode(int mode);
    static QString writeModeName(int mode);

    // The options of a new output: the value remembered under "defaults/outputs/<key>"
    // when there is one, else the factory value.
    void applyDefaults(const Settings *settings);
    // Remembers this node's options as the defaults of new outputs.
    void saveDefaults(Settings *settings) const;

    // The format that is written: the node's own, else the one its extension names, else
    // delimited text.
    int effectiveFileType() const;
    // Every format but the two Excel ones.
    static bool isTextFormat(int fileType);

    void process(bool recursive, bool freeMemory) override;
    void reportProgress(qreal fraction) { GraphScene::reportProgress(this, fraction); }

    // The file being (or last) written, with its variables expanded.
    QString targetPath() const { return m_targetPath; }
    QString targetSheet() const { return m_targetSheet; }
    // What the variables of a file name stand for: the date, the document and the
    // scene's inputs that have an alias. The document's path is the scene's
    // "documentPath" property.
    FileNameContext fileNameContext() const;

    // Whether a file about to be written at path gets a byte order mark and a header row,
    // under the node's write mode. Decided before the file is opened.
    bool byteOrderMarkDecision(const QString &path) const;
    bool headerDecision(const QString &path, const QString &sheet) const;

    // Records a file just written: kept on the node, counted by the run, and a second
    // write of the same path in one run is warned about.
    void addWrittenFile(const QString &path);
    // Absolute native paths written by the last processing, each once, in order.
    QStringList writtenFiles() const { return m_writtenFiles; }

    static void setWriter(int fileType, const Writer &writer);
    static bool hasWriter(int fileType);
    // The file handling of text formats around a device writer: the write mode's open,
    // the byte order mark, the header decision and the "Created file" lines. Nothing is
    // ever left half written: Overwrite replaces the file only once it is complete,
    // a failed Append cuts the file back to what it was, and a failed New leaves no file.
    static Writer textFileWriter(const DeviceWriter &write);
    // The same for workbooks: New with an existing file, the default sheet name, the
    // size warnings and the header decision; the writer replaces the file safely itself
    // and reports what it did to an existing workbook.
    static Writer workbookFileWriter(const WorkbookWriter &write);
    // Interactive runs ask before writing many files; without a confirmation (a headless
    // run) they don't ask.
    static void setConfirmation(const Confirmation &confirm);

private:
    OutputOptions writerOptions() const;
    bool write(int fileType);
    bool writeMultiple(int fileType);
    bool writeTextFile(
        const DeviceWriter &write, const Dataset &dataset, QStringList &warnings, QStringList &information);
    bool writeWorkbook(
        const WorkbookWriter &write, const Dataset &dataset, QStringList &warnings, QStringList &information);
    void checkExtension(const QString &path, int fileType);
    void addCountedWarnings(const QStringList &warnings);
    void reportPartProgress(double fraction);

    OutputOptions m_options;
    QString m_targetPath;
    QString m_targetSheet;
    QStringList m_writtenFiles;
    double m_progressBase = 0;
    double m_progressSpan = 1;
};
