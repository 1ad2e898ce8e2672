#pragma once

#include <QByteArray>
#include <QColor>
#include <QList>
#include <QPair>
#include <QPointF>
#include <QString>
#include <QStringList>
#include <QVector>

// One element of a flow document: its attributes in the order they were set and its
// child elements. Documents are written from these trees rather than from a DOM, so that
// attributes come out in their fixed order and a saved file compares line by line.
//
// The setters and getters apply the document's encodings: texts percent-encoded and left
// out when empty, bools as 0 or 1, lists joined with U+001F, points as two numbers. A
// getter gives its default for a missing attribute and for one it can't parse.
class DocumentElement
{
public:
    explicit DocumentElement(const QString &name = QString());

    const QString &name() const { return m_name; }
    bool isNull() const { return m_name.isEmpty(); }

    // Raw attribute text; a second set of the same name replaces the value in place.
    void setAttribute(const QString &name, const QString &value);
    bool hasAttribute(const QString &name) const;
    QString attribute(const QString &name, const QString &defaultValue = QString()) const;
    const QVector<QPair<QString, QString>> &attributes() const { return m_attributes; }

    void setText(const QString &name, const QString &text);
    void setInt(const QString &name, int value);
    void setBool(const QString &name, bool value);
    void setTextList(const QString &name, const QStringList &items);
    void setIntList(const QString &name, const QList<int> &values);
    void setPoint(const QString &name, const QPointF &point);
    // An invalid colour gives an empty value.
    void setColor(const QString &name, const QColor &color);

    QString text(const QString &name, const QString &defaultValue = QString()) const;
    int intValue(const QString &name, int defaultValue) const;
    bool boolValue(const QString &name, bool defaultValue) const;
    QStringList textList(const QString &name) const;
    // Items that are no integer are left out.
    QList<int> intList(const QString &name) const;
    // A value that doesn't split into exactly two finite numbers gives the default.
    QPointF point(const QString &name, const QPointF &defaultValue = QPointF()) const;
    // Invalid unless the value holds three numbers from 0 to 255.
    QColor color(const QString &name) const;

    DocumentElement &appendChild(const QString &name);
    void appendChild(const DocumentElement &child) { m_children.append(child); }
    const QList<DocumentElement> &children() const { return m_children; }
    QList<DocumentElement> &children() { return m_children; }
    // The children of that name, in document order.
    QList<const DocumentElement *> childElements(const QString &name) const;
    // The first child of that name, or nullptr.
    const DocumentElement *firstChild(const QString &name) const;
    DocumentElement *firstChild(const QString &name);

    // Text lists: items percent-encoded and joined with U+001F; read back by splitting
    // on U+001F, or on "^" when the text holds none (older documents).
    static QString encode(const QString &text);
    static QString decode(const QString &text);
    static QString joinList(const QStringList &items);
    static QStringList splitList(const QString &text);
    static QString pointText(const QPointF &point);

    // The document text: "<!DOCTYPE type>" and this element as root, indented by 4 per
    // level, in UTF-8.
    QByteArray toXml(const QString &documentType) const;

private:
    QString m_name;
    QVector<QPair<QString, QString>> m_attributes;
    QList<DocumentElement> m_children;
};

// Reads document text into a tree, refusing what could exhaust the reader: elements
// nested deeper than maximumDepth and documents that declare entities. Failures give the
// parser's message and the place, as a document reader reports them.
struct DocumentParseResult
{
    bool ok = false;
    QString documentType; // the name in <!DOCTYPE ...>, or empty
    DocumentElement root;
    QString errorMessage;
    qint64 errorLine = 0;
    qint64 errorColumn = 0;
};

DocumentParseResult parseDocumentText(const QByteArray &text, int maximumDepth = 256);
