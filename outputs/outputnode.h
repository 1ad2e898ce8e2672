#pragma once

#include "flow/graphscene.h"
#include "flow/ionode.h"

#include <functional>

// The flow item that writes its one upstream dataset to a file. Writing is done by the
// writer registered for the node's format; the node checks what can be checked before,
// and keeps the paths it wrote for the run's report.
class OutputNode : public IONode
{
    Q_OBJECT
public:
    enum WriteMode : int { Disabled = 0, Overwrite = 1, Append = 2, New = 3 };

    // Writes dataset as the node's options say, adding to the two message lists and
    // calling addWrittenFile for each file written; returns false when writing failed.
    using Writer = std::function<bool(
        OutputNode &node, const Dataset &dataset, QStringList &warnings, QStringList &information)>;

    explicit OutputNode(QGraphicsItem *parent = nullptr);

    QString typeName() const override { return QStringLiteral("Output"); }
    QString displayTypeName() const override { return tr("Output"); }
    // The given name, else the file name, or "<no file name>".
    QString name() const override;
    int maxUpstream() const override { return 1; }
    int maxDownstream() const override { return 0; }

    int writeMode() const { return m_writeMode; }
    // A number outside 0..3 is taken as Overwrite.
    void setWriteMode(int mode);
    static QString writeModeName(int mode);

    // The format that is written: the node's own, else the one its extension names, else
    // delimited text.
    int effectiveFileType() const;

    void process(bool recursive, bool freeMemory) override;
    void reportProgress(qreal fraction) { GraphScene::reportProgress(this, fraction); }

    // Records a file just written: kept on the node, counted by the run, and a second
    // write of the same path in one run is warned about.
    void addWrittenFile(const QString &path);
    // Absolute native paths written by the last processing, each once, in order.
    QStringList writtenFiles() const { return m_writtenFiles; }

    static void setWriter(int fileType, const Writer &writer);
    static bool hasWriter(int fileType);

private:
    int m_writeMode = Overwrite;
    QStringList m_writtenFiles;
};
