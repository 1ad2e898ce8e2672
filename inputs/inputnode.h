#pragma once

#include "flow/graphscene.h"
#include "flow/ionode.h"

#include <functional>

// The flow item that produces a dataset from a file or from pasted text. Reading is done
// by the reader registered for the node's format; the node decides when to read, checks
// the file first, and reports what happened in its status and messages.
class InputNode : public IONode
{
    Q_OBJECT
public:
    // Fills dataset from the node's file or text, adding to the two message lists; returns
    // false when the read failed. The node's status is set from the result.
    using Reader = std::function<bool(
        InputNode &node, Dataset &dataset, QStringList &warnings, QStringList &information)>;

    explicit InputNode(QGraphicsItem *parent = nullptr);

    QString typeName() const override { return QStringLiteral("Input"); }
    QString displayTypeName() const override { return tr("Input"); }
    // The given name, else the source: the file name (with "[sheet]" for Excel),
    // "Clipboard", or "<unset>".
    QString name() const override;
    QString sourceText() const;
    int maxUpstream() const override { return 0; }
    int maxDownstream() const override { return 2147483647; }

    // Pasted text, read when the medium is Clipboard.
    QString text() const { return m_text; }
    void setText(const QString &text) { m_text = text; }

    // The format that is read: the node's own, else the one its extension names (files)
    // or its content suggests (pasted text), else delimited text.
    int effectiveFileType() const;

    void process(bool recursive, bool freeMemory) override;
    // Passes the fraction of the read done on to the run.
    void reportProgress(qreal fraction) { GraphScene::reportProgress(this, fraction); }

    // One reader per format, filled once at start; a second one for a format replaces the
    // first, and an empty function removes it.
    static void setReader(int fileType, const Reader &reader);
    static bool hasReader(int fileType);

    // The format pasted text looks like: XML, JSON and vCard by their brackets, else
    // fixed width, delimited or plain text by counting spaces and delimiters.
    static int guessTextFormat(const QString &text);

private:
    void read(int fileType);

    QString m_text;
};
