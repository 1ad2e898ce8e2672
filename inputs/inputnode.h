#pragma once

#include "flow/graphscene.h"
#include "flow/ionode.h"
#include "inputoptions.h"

#include <functional>

class QFileSystemWatcher;
class QTimer;
class Settings;
class TextSource;

// The flow item that produces a dataset from a file or from pasted text. Reading is done
// by the reader registered for the node's format; the node checks the file, decodes text,
// then resolves headers, adds meta information, assigns column ids and reports what
// happened in its status and messages.
class InputNode : public IONode
{
    Q_OBJECT
public:
    // Readers in the shape every format shares. Text formats (JSON, XML, vCard) get the
    // whole decoded text; Excel formats get the file's path.
    using TextReader = std::function<bool(
        const QString &textOrPath, const InputOptions &options, Dataset &table, ReadReport &report)>;
    // The line formats (delimited, fixed width, plain text) decode as they read.
    using StreamReader = std::function<bool(
        TextSource &source, const InputOptions &options, Dataset &table, ReadReport &report)>;
    // Replaces the whole read for its format, file checks aside: its table is taken with
    // the headers it has, without a header guess. Used by tests of the flow.
    using Reader = std::function<bool(
        InputNode &node, Dataset &dataset, QStringList &warnings, QStringList &information)>;

    // How long a watched file must stay unchanged before it is read again.
    static constexpr int ImportDelayMs = 5000;

    explicit InputNode(QGraphicsItem *parent = nullptr);
    ~InputNode() override;

    QString typeName() const override { return QStringLiteral("Input"); }
    QString displayTypeName() const override { return tr("Input"); }
    // The given name, else the source: the file name (with "[sheet]" for Excel),
    // "Clipboard", or "<unset>".
    QString name() const override;
    QString sourceText() const;
    int maxUpstream() const override { return 0; }
    int maxDownstream() const override { return 2147483647; }

    // All read options; source, path, sheet, format, delimiters and encoding are the
    // IONode fields, so the two views always agree.
    InputOptions options() const;
    void setOptions(const InputOptions &options);
    // The options of a new input: each remembered default under "defaults/inputs/<key>",
    // else its factory value.
    static InputOptions defaultOptions(const Settings *settings);
    // Remembers these options as the defaults of new inputs.
    static void rememberDefaults(const InputOptions &options, Settings *settings);

    // Pasted text, read when the medium is Clipboard.
    QString text() const { return m_text; }
    void setText(const QString &text) { m_text = text; }

    // The format that is read: the node's own, else the one its extension names (files)
    // or its content suggests (pasted text), else delimited text.
    int effectiveFileType() const;

    void process(bool recursive, bool freeMemory) override;
    // Runs the read pipeline once: reads the source into the table unless the node is up
    // to date, and leaves the downstream items alone.
    void read();
    // Passes the fraction of the read done on to the run.
    void reportProgress(qreal fraction) { GraphScene::reportProgress(this, fraction); }

    // One reader per format, filled once at start; a second one for a format replaces the
    // first, and an empty function removes it.
    static void setReader(int fileType, const TextReader &reader);
    static void setReader(int fileType, const StreamReader &reader);
    static void setReader(int fileType, const Reader &reader);
    static bool hasReader(int fileType);

    // The format pasted text looks like: XML, JSON and vCard by their brackets, else
    // fixed width, delimited or plain text by counting spaces and delimiters.
    static int guessTextFormat(const QString &text);
    // Whether the first row of a table without headers reads as headers: no number and
    // no date in it, and at least two rows.
    static bool guessHasHeader(const Dataset &table);

    bool isWatching() const { return m_watcher != nullptr; }
    // Fixed width: the first raw lines of the last read, and "(+n more rows)" after them.
    QStringList sampleLines() const { return m_sampleLines; }

public slots:
    // A change of the watched file: the read waits until the file has been quiet for
    // ImportDelayMs, so that a file still being written is read once.
    void onFileChanged();
    void onDelayedImport();

private:
    void readSource(int fileType);
    bool readFile(int fileType, const QString &where);
    bool readText(TextSource &source, int fileType, const QString &where, ReadReport &report);
    void applyMetaInformation();
    // Checks the table's columns against the schema set in the item pane, by header.
    void applySchema();
    void updateWatcher();
    qint64 maxTextChars() const;

    InputOptions m_options; // the fields IONode doesn't hold
    QString m_text;
    QStringList m_sampleLines;
    QFileSystemWatcher *m_watcher = nullptr;
    QTimer *m_importTimer = nullptr;
};
