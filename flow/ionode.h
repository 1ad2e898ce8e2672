#pragma once

#include "node.h"

// What inputs and outputs share: where the data lives (a file or pasted text) and how
// its text is laid out. Each subclass sets its own defaults and meaning of the options.
class IONode : public Node
{
    Q_OBJECT
public:
    enum Medium : int { File = 0, Clipboard = 1 };
    // File type numbers, shared with documents and the format tables.
    enum FileType : int {
        DelimitedText = 0,
        ExcelXlsx = 1,
        ExcelXls = 2,
        FixedWidth = 3,
        Json = 4,
        Xml = 5,
        VCard = 6,
        Yaml = 7,
        Html = 8,
        Markdown = 9,
        PlainText = 10,
        NoFileType = 11,
    };

    explicit IONode(QGraphicsItem *parent = nullptr);

    int medium() const { return m_medium; }
    void setMedium(int medium);
    QString path() const { return m_path; }
    void setPath(const QString &path) { m_path = path; }
    int fileType() const { return m_fileType; }
    // A number outside 0..11 is taken as "no format".
    void setFileType(int fileType);
    int delimiter() const { return m_delimiter; }
    void setDelimiter(int delimiter) { m_delimiter = delimiter; }
    // One character at most; the rest of a longer text is dropped.
    QString customDelimiter() const { return m_customDelimiter; }
    void setCustomDelimiter(const QString &delimiter) { m_customDelimiter = delimiter.left(1); }
    QString encoding() const { return m_encoding; }
    void setEncoding(const QString &encoding) { m_encoding = encoding; }
    QString worksheet() const { return m_worksheet; }
    void setWorksheet(const QString &worksheet) { m_worksheet = worksheet; }

    // The file rows of the details table, for a node whose medium is a file.
    QList<DetailRow> fileRows() const override;

private:
    int m_medium = File;
    QString m_path;
    int m_fileType = NoFileType;
    int m_delimiter = 1;
    QString m_customDelimiter;
    QString m_encoding;
    QString m_worksheet;
};
