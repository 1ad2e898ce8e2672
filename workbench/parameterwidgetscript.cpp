#include "workbench/parameterwidgets.h"

#include "transforms/verifyrules.h"
#include "workbench/itemwidget.h"

#include <QFontDatabase>
#include <QLocale>

#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QJSEngine>
#include <QKeyEvent>
#include <QListWidget>
#include <QMenu>
#include <QPainter>
#include <QRegularExpression>
#include <QSplitter>
#include <QSyntaxHighlighter>
#include <QTextBlock>
#include <QTimer>
#include <QToolButton>
#include <QVBoxLayout>
#include <algorithm>

using namespace parameterwidgets;

namespace {

// Keywords, strings, numbers, comments and column references in their own colours.
class ScriptHighlighter : public QSyntaxHighlighter
{
public:
    explicit ScriptHighlighter(QTextDocument *document)
        : QSyntaxHighlighter(document)
    {
        const bool dark = QPalette().color(QPalette::Base).lightness() < 128;
        QTextCharFormat keyword;
        keyword.setForeground(dark ? QColor(0x82, 0xAA, 0xFF) : QColor(0x00, 0x33, 0xB3));
        keyword.setFontWeight(QFont::Bold);
        QTextCharFormat number;
        number.setForeground(dark ? QColor(0xF7, 0x8C, 0x6C) : QColor(0x17, 0x50, 0xEB));
        QTextCharFormat string;
        string.setForeground(dark ? QColor(0xC3, 0xE8, 0x8D) : QColor(0x06, 0x7D, 0x17));
        QTextCharFormat reference;
        reference.setForeground(dark ? QColor(0xFF, 0xCB, 0x6B) : QColor(0x87, 0x10, 0x94));
        m_comment.setForeground(dark ? QColor(0x80, 0x80, 0x80) : QColor(0x8C, 0x8C, 0x8C));
        m_comment.setFontItalic(true);
        m_rules << Rule {
            QRegularExpression(QStringLiteral(
                "\\b(break|case|catch|const|continue|default|delete|do|else|false|finally|for|"
                "function|if|in|instanceof|let|new|null|return|switch|this|throw|true|try|typeof|"
                "undefined|var|void|while)\\b")),
            keyword};
        m_rules << Rule {QRegularExpression(QStringLiteral("\\b\\d+(\\.\\d+)?([eE][-+]?\\d+)?\\b")), number};
        m_rules << Rule {QRegularExpression(QStringLiteral("\\$\\([^)]*\\)")), reference};
        m_rules << Rule {
            QRegularExpression(QStringLiteral("\"(\\\\.|[^\"\\\\])*\"|'(\\\\.|[^'\\\\])*'")), string};
        m_rules << Rule {QRegularExpression(QStringLiteral("//[^\n]*")), m_comment};
    }

protected:
    void highlightBlock(const QString &text) override
    {
        for (const Rule &rule : qAsConst(m_rules)) {
            QRegularExpressionMatchIterator it = rule.pattern.globalMatch(text);
            while (it.hasNext()) {
                const QRegularExpressionMatch match = it.next();
                setFormat(match.capturedStart(), match.capturedLength(), rule.format);
            }
        }
        // Block comments may span lines: the state says whether one is open.
        setCurrentBlockState(0);
        int start = previousBlockState() == 1 ? 0 : text.indexOf(QLatin1String("/*"));
        while (start >= 0) {
            const int end =
                text.indexOf(QLatin1String("*/"), start + (previousBlockState() == 1 && start == 0 ? 0 : 2));
            int length;
            if (end < 0) {
                setCurrentBlockState(1);
                length = text.size() - start;
            } else {
                length = end - start + 2;
            }
            setFormat(start, length, m_comment);
            start = end < 0 ? -1 : text.indexOf(QLatin1String("/*"), start + length);
        }
    }

private:
    struct Rule
    {
        QRegularExpression pattern;
        QTextCharFormat format;
    };
    QList<Rule> m_rules;
    QTextCharFormat m_comment;
};

} // namespace

// The script editor with its line-number gutter.
class ScriptParameterWidget::Editor : public QPlainTextEdit
{
public:
    explicit Editor(QWidget *parent)
        : QPlainTextEdit(parent)
        , m_gutter(new Gutter(this))
    {
        setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
        setLineWrapMode(QPlainTextEdit::NoWrap);
        setTabStopDistance(fontMetrics().horizontalAdvance(QLatin1Char(' ')) * 4);
        new ScriptHighlighter(document());
        connect(this, &QPlainTextEdit::blockCountChanged, this, [this] { updateMargins(); });
        connect(this, &QPlainTextEdit::updateRequest, this, [this](const QRect &rect, int dy) {
            if (dy)
                m_gutter->scroll(0, dy);
            else
                m_gutter->update(0, rect.y(), m_gutter->width(), rect.height());
        });
        updateMargins();
    }
    int errorLine = 0; // 1-based; 0 for none

    int gutterWidth() const
    {
        const int digits = QString::number(qMax(1, blockCount())).size();
        return 8 + fontMetrics().horizontalAdvance(QLatin1Char('9')) * qMax(2, digits);
    }
    void paintGutter(QPaintEvent *event)
    {
        QPainter painter(m_gutter);
        painter.fillRect(event->rect(), palette().color(QPalette::AlternateBase));
        QTextBlock block = firstVisibleBlock();
        int top = qRound(blockBoundingGeometry(block).translated(contentOffset()).top());
        while (block.isValid() && top <= event->rect().bottom()) {
            const int number = block.blockNumber() + 1;
            painter.setPen(number == errorLine ? markColour() : palette().color(QPalette::PlaceholderText));
            painter.drawText(0, top, m_gutter->width() - 4, fontMetrics().height(), Qt::AlignRight,
                QString::number(number));
            top += qRound(blockBoundingRect(block).height());
            block = block.next();
        }
    }

protected:
    void resizeEvent(QResizeEvent *event) override
    {
        QPlainTextEdit::resizeEvent(event);
        const QRect contents = contentsRect();
        m_gutter->setGeometry(contents.left(), contents.top(), gutterWidth(), contents.height());
    }
    void keyPressEvent(QKeyEvent *event) override
    {
        // Ctrl+Tab and Ctrl+Shift+Tab leave the editor; Tab and Shift+Tab indent.
        if ((event->key() == Qt::Key_Tab || event->key() == Qt::Key_Backtab)
            && (event->modifiers() & Qt::ControlModifier)) {
            focusNextPrevChild(event->key() == Qt::Key_Tab && !(event->modifiers() & Qt::ShiftModifier));
            return;
        }
        if (event->key() == Qt::Key_Tab && event->modifiers() == Qt::NoModifier) {
            indent(true);
            return;
        }
        if (event->key() == Qt::Key_Backtab) {
            indent(false);
            return;
        }
        QPlainTextEdit::keyPressEvent(event);
    }

private:
    class Gutter : public QWidget
    {
    public:
        explicit Gutter(Editor *editor)
            : QWidget(editor)
            , m_editor(editor)
        { }
        QSize sizeHint() const override { return QSize(m_editor->gutterWidth(), 0); }

    protected:
        void paintEvent(QPaintEvent *event) override { m_editor->paintGutter(event); }

    private:
        Editor *m_editor;
    };

    void updateMargins() { setViewportMargins(gutterWidth(), 0, 0, 0); }
    void indent(bool in)
    {
        QTextCursor cursor = textCursor();
        const QString spaces(4, QLatin1Char(' '));
        if (in && !cursor.hasSelection()) {
            cursor.insertText(spaces);
            return;
        }
        QTextDocument *doc = document();
        const int first = doc->findBlock(cursor.selectionStart()).blockNumber();
        const int last = doc->findBlock(cursor.selectionEnd()).blockNumber();
        cursor.beginEditBlock();
        for (int n = first; n <= last; ++n) {
            QTextCursor line(doc->findBlockByNumber(n));
            if (in) {
                line.insertText(spaces);
            } else {
                const QString text = line.block().text();
                int remove = 0;
                while (remove < 4 && remove < text.size() && text.at(remove) == QLatin1Char(' '))
                    ++remove;
                line.movePosition(QTextCursor::Right, QTextCursor::KeepAnchor, remove);
                line.removeSelectedText();
            }
        }
        cursor.endEditBlock();
    }

    Gutter *m_gutter;
};

ScriptParameterWidget::ScriptParameterWidget(Parameter *parameter, QWidget *parent)
    : CompositeParameterWidget(parameter, parent)
{
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    auto *top = new QHBoxLayout;
    top->addStretch(1);
    auto *insert = new QToolButton(this);
    insert->setText(tr("Insert Column"));
    insert->setPopupMode(QToolButton::InstantPopup);
    auto *menu = new QMenu(insert);
    insert->setMenu(menu);
    top->addWidget(insert);
    m_editor = new Editor(this);
    const int line = m_editor->fontMetrics().lineSpacing();
    m_editor->setMinimumHeight(line * 8 + 12);
    m_error = new QLabel(this);
    m_error->setWordWrap(true);
    m_error->setTextInteractionFlags(Qt::TextSelectableByMouse);
    QPalette palette = m_error->palette();
    palette.setColor(QPalette::WindowText, markColour());
    m_error->setPalette(palette);
    m_error->hide();
    layout->addLayout(top);
    layout->addWidget(m_editor);
    layout->addWidget(m_error);
    m_checkTimer = new QTimer(this);
    m_checkTimer->setSingleShot(true);
    m_checkTimer->setInterval(500);
    connect(m_checkTimer, &QTimer::timeout, this, &ScriptParameterWidget::checkSyntax);
    connect(menu, &QMenu::aboutToShow, this, [this, menu] {
        menu->clear();
        const Dataset *dataset = m_parameter->upstreamDataset();
        const QStringList headers = dataset ? dataset->displayHeaders() : QStringList();
        for (const QString &header : headers) {
            const QString variable = QStringLiteral("$(%1)").arg(header);
            menu->addAction(variable, this, [this, variable] {
                m_editor->insertPlainText(variable);
                m_editor->setFocus();
            });
        }
        if (headers.isEmpty())
            menu->addAction(tr("No columns"))->setEnabled(false);
    });
    connect(m_editor, &QPlainTextEdit::textChanged, this, [this] {
        m_checkTimer->start();
        onTyped();
    });
    updateFromParameter();
}

void ScriptParameterWidget::updateFromParameter()
{
    load([this] {
        const QString text = m_parameter->stringValue();
        if (m_editor->toPlainText() != text)
            m_editor->setPlainText(text);
    });
    checkSyntax();
}

QVariant ScriptParameterWidget::value() const
{
    return m_editor->toPlainText();
}

QWidget *ScriptParameterWidget::focusTarget() const
{
    return m_editor;
}

QPlainTextEdit *ScriptParameterWidget::editor() const
{
    return m_editor;
}

QString ScriptParameterWidget::syntaxMessage(const QString &script, int *line)
{
    if (line)
        *line = 0;
    if (script.trimmed().isEmpty())
        return QString();
    // The script is compiled as the transform compiles it, as a function body whose
    // first line is the function's own, and never called.
    QJSEngine engine;
    const QJSValue result = engine.evaluate(QStringLiteral("(function() { %1\n})").arg(script), QString(), 1);
    if (!result.isError())
        return QString();
    const int number = qMax(1, result.property(QStringLiteral("lineNumber")).toInt());
    if (line)
        *line = number;
    QString message = result.property(QStringLiteral("message")).toString();
    if (message.isEmpty())
        message = result.toString();
    return tr("Syntax error at line %1: %2").arg(number).arg(message);
}

void ScriptParameterWidget::checkSyntax()
{
    m_checkTimer->stop();
    int line = 0;
    const QString message = syntaxMessage(m_editor->toPlainText(), &line);
    m_error->setText(message);
    m_error->setVisible(!message.isEmpty());
    if (m_editor->errorLine != line) {
        m_editor->errorLine = line;
        m_editor->viewport()->update();
        m_editor->update();
        for (QWidget *child : m_editor->findChildren<QWidget *>())
            child->update();
    }
}

// VerifyRules

QString VerifyRulesParameterWidget::datasetRuleName(int id)
{
    const QStringList names = {tr("Minimum rows"), tr("Maximum rows"), tr("Required columns"),
        tr("No duplicate rows"), tr("No blank rows"), tr("Unique headers")};
    return names.value(id, tr("Rule %1").arg(id));
}

QString VerifyRulesParameterWidget::columnRuleName(int id)
{
    const QStringList names = {tr("Required"), tr("Unique"), tr("Type"), tr("Minimum value"),
        tr("Maximum value"), tr("Minimum length"), tr("Maximum length"), tr("Matches regex"),
        tr("Allowed values"), tr("No surrounding whitespace")};
    return names.value(id, tr("Rule %1").arg(id));
}

QString VerifyRulesParameterWidget::typeName(int type)
{
    const QStringList names = {
        tr("Text"), tr("Integer"), tr("Number"), tr("Date"), tr("Time"), tr("Boolean")};
    return names.value(type, names.first());
}

QStringList VerifyRulesParameterWidget::severityNames()
{
    return {tr("Warning"), tr("Error"), tr("Stop"), tr("None")};
}

bool VerifyRulesParameterWidget::isValueUsable(int ruleId, bool datasetRule, int type, const QString &value)
{
    const QString text = value.trimmed();
    bool ok = true;
    if (datasetRule) {
        if (ruleId == VerifyMinimumRows || ruleId == VerifyMaximumRows)
            text.toLongLong(&ok);
        return ok;
    }
    switch (ruleId) {
    case VerifyMinimumValue:
    case VerifyMaximumValue:
        if (text.isEmpty())
            return true;
        if (type == VerifyTypeInteger || type == VerifyTypeNumber)
            QLocale::c().toDouble(text, &ok);
        return ok;
    case VerifyMinimumLength:
    case VerifyMaximumLength:
        if (text.isEmpty())
            return true;
        return text.toInt(&ok) >= 0 && ok;
    case VerifyMatchesRegex:
        return QRegularExpression(value).isValid();
    default:
        return true;
    }
}

namespace {
QTableWidget *makeRulesTable(QWidget *parent, const QString &name)
{
    auto *table = new QTableWidget(0, 4, parent);
    table->setHorizontalHeaderLabels(
        {QObject::tr("Rule"), QObject::tr("Value"), QObject::tr("Severity"), QObject::tr("Flag")});
    table->horizontalHeader()->setSectionResizeMode(0, QHeaderView::ResizeToContents);
    table->horizontalHeader()->setSectionResizeMode(1, QHeaderView::Stretch);
    table->horizontalHeader()->setSectionResizeMode(2, QHeaderView::Fixed);
    table->horizontalHeader()->setSectionResizeMode(3, QHeaderView::ResizeToContents);
    table->verticalHeader()->setVisible(false);
    table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    table->setSelectionBehavior(QAbstractItemView::SelectRows);
    table->setTabKeyNavigation(false);
    table->setAccessibleName(name);
    return table;
}
} // namespace

VerifyRulesParameterWidget::VerifyRulesParameterWidget(Parameter *parameter, QWidget *parent)
    : CompositeParameterWidget(parameter, parent)
{
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    auto *splitter = new QSplitter(Qt::Vertical, this);
    splitter->setChildrenCollapsible(false);
    auto *datasetBox = new QGroupBox(tr("Dataset rules"), splitter);
    auto *datasetLayout = new QVBoxLayout(datasetBox);
    m_datasetTable = makeRulesTable(datasetBox, tr("Dataset rules"));
    datasetLayout->addWidget(m_datasetTable);
    auto *columnBox = new QGroupBox(tr("Column rules"), splitter);
    // The list of columns above the chosen column's rules, so that the rules table has the
    // pane's whole width for its four columns.
    auto *columnLayout = new QVBoxLayout(columnBox);
    m_columns = new QListWidget(columnBox);
    m_columns->setAccessibleName(tr("Columns"));
    m_columns->setMinimumWidth(120);
    auto *right = new QVBoxLayout;
    auto *typeRow = new QHBoxLayout;
    auto *typeLabel = new QLabel(tr("Type:"), columnBox);
    m_type = new QComboBox(columnBox);
    ignoreWheelWithoutFocus(m_type);
    for (int type = 0; type < VerifyColumnTypeCount; ++type)
        m_type->addItem(typeName(type));
    typeLabel->setBuddy(m_type);
    typeRow->addWidget(typeLabel);
    typeRow->addWidget(m_type);
    typeRow->addStretch(1);
    m_columnTable = makeRulesTable(columnBox, tr("Column rules"));
    right->addLayout(typeRow);
    right->addWidget(m_columnTable);
    m_columns->setFixedHeight(m_columns->fontMetrics().lineSpacing() * 6 + 2 * m_columns->frameWidth() + 4);
    columnLayout->addWidget(m_columns);
    columnLayout->addLayout(right, 1);
    splitter->addWidget(datasetBox);
    splitter->addWidget(columnBox);
    layout->addWidget(splitter);
    connect(m_columns, &QListWidget::currentRowChanged, this, [this] {
        storeColumn();
        showColumn();
    });
    connect(m_type, QOverload<int>::of(&QComboBox::activated), this, [this](int type) {
        // A new type offers its own rules; rules both types have keep their settings.
        const QList<VerifyRule> old = rulesOf(m_columnTable);
        VerifyColumnRules rules = verifyColumnRulesOff(type);
        for (VerifyRule &rule : rules.rules) {
            for (const VerifyRule &before : old) {
                if (before.id == rule.id && rule.id != VerifyType)
                    rule = before;
            }
        }
        fillRules(m_columnTable, rules.rules, false, type);
        storeColumn();
        updateColumnTexts();
        onChanged();
    });
    updateFromParameter();
}

void VerifyRulesParameterWidget::updateFromParameter()
{
    if (showsCurrentValue())
        return;
    load([this] {
        m_value = m_parameter->verifyRules();
        const Dataset *dataset = m_parameter->upstreamDataset();
        m_ids.clear();
        const int current = qMax(0, m_columns->currentRow());
        m_columns->clear();
        m_shownColumn = -1;
        fillRules(m_datasetTable, m_value.datasetRules, true, 0);
        const QStringList texts = dataset ? columnTexts(*dataset) : QStringList();
        for (int c = 0; c < texts.size(); ++c) {
            m_ids << dataset->columnId(c);
            auto *item = new QListWidgetItem(texts.at(c), m_columns);
            item->setData(Qt::UserRole, texts.at(c));
        }
        updateColumnTexts();
        if (m_columns->count() > 0)
            m_columns->setCurrentRow(qMin(current, m_columns->count() - 1));
        showColumn();
    });
}

void VerifyRulesParameterWidget::fillRules(
    QTableWidget *table, const QList<VerifyRule> &rules, bool datasetRules, int type)
{
    table->setRowCount(0);
    for (int r = 0; r < rules.size(); ++r) {
        const VerifyRule &rule = rules.at(r);
        table->insertRow(r);
        auto *name = new QTableWidgetItem(datasetRules ? datasetRuleName(rule.id) : columnRuleName(rule.id));
        name->setData(Qt::UserRole, rule.id);
        name->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable);
        table->setItem(r, 0, name);
        auto *value = new QLineEdit(rule.value, table);
        value->setFrame(false);
        value->setAccessibleName(tr("Value of %1").arg(name->text()));
        auto *severity = new QComboBox(table);
        ignoreWheelWithoutFocus(severity);
        severity->addItems(severityNames());
        severity->setCurrentIndex(qBound(0, rule.severity, 3));
        severity->setAccessibleName(tr("Severity of %1").arg(name->text()));
        auto *flag = new QCheckBox(table);
        flag->setChecked(rule.flag);
        flag->setAccessibleName(tr("Flag of %1").arg(name->text()));
        table->setCellWidget(r, 1, value);
        table->setCellWidget(r, 2, severity);
        table->setCellWidget(r, 3, flag);
        table->setColumnWidth(2, severity->sizeHint().width());
        const auto check = [value, rule, datasetRules, type] {
            setMarked(value, !isValueUsable(rule.id, datasetRules, type, value->text()),
                tr("This rule can't use the value."));
        };
        check();
        connect(value, &QLineEdit::textEdited, this, [this, table, check] {
            check();
            onTableEdited(table, true);
        });
        connect(severity, QOverload<int>::of(&QComboBox::activated), this,
            [this, table] { onTableEdited(table, false); });
        connect(flag, &QCheckBox::toggled, this, [this, table] { onTableEdited(table, false); });
    }
    // Every rule shows without scrolling the table: rows as tall as their combo boxes.
    int height = table->horizontalHeader()->sizeHint().height();
    for (int r = 0; r < table->rowCount(); ++r) {
        const int row =
            qMax(table->verticalHeader()->defaultSectionSize(), table->cellWidget(r, 2)->sizeHint().height());
        table->setRowHeight(r, row);
        height += row;
    }
    table->setMinimumHeight(height + 2 * table->frameWidth() + 2);
    chainTableTabOrder(table);
}

QList<VerifyRule> VerifyRulesParameterWidget::rulesOf(const QTableWidget *table) const
{
    QList<VerifyRule> rules;
    for (int r = 0; r < table->rowCount(); ++r) {
        VerifyRule rule;
        rule.id = table->item(r, 0)->data(Qt::UserRole).toInt();
        rule.value = qobject_cast<QLineEdit *>(table->cellWidget(r, 1))->text();
        rule.severity = qobject_cast<QComboBox *>(table->cellWidget(r, 2))->currentIndex();
        rule.flag = qobject_cast<QCheckBox *>(table->cellWidget(r, 3))->isChecked();
        rules << rule;
    }
    return rules;
}

void VerifyRulesParameterWidget::showColumn()
{
    const int row = m_columns->currentRow();
    m_shownColumn = row;
    const bool shown = row >= 0 && row < m_ids.size();
    m_type->setEnabled(shown);
    m_columnTable->setEnabled(shown);
    if (!shown) {
        m_columnTable->setRowCount(0);
        return;
    }
    m_shownStored = m_value.columns.contains(m_ids.at(row));
    VerifyColumnRules rules = m_value.columns.value(m_ids.at(row));
    if (rules.rules.isEmpty())
        rules = verifyColumnRulesOff(rules.type);
    m_shownInitial = rules;
    const QSignalBlocker blocker(m_type);
    m_type->setCurrentIndex(rules.type);
    fillRules(m_columnTable, rules.rules, false, rules.type);
}

void VerifyRulesParameterWidget::storeColumn()
{
    if (m_shownColumn < 0 || m_shownColumn >= m_ids.size())
        return;
    VerifyColumnRules rules;
    rules.type = m_type->currentIndex();
    rules.rules = rulesOf(m_columnTable);
    if (m_shownStored || !(rules == m_shownInitial)) {
        m_value.columns.insert(m_ids.at(m_shownColumn), rules);
        m_shownStored = true;
    }
}

void VerifyRulesParameterWidget::updateColumnTexts()
{
    for (int r = 0; r < m_columns->count() && r < m_ids.size(); ++r) {
        const VerifyColumnRules rules = m_value.columns.value(m_ids.at(r));
        const int on = int(std::count_if(rules.rules.cbegin(), rules.rules.cend(),
            [](const VerifyRule &rule) { return rule.severity != VerifyFailNone; }));
        QListWidgetItem *item = m_columns->item(r);
        item->setText(
            tr("%1 — %2, %3 rule(s)").arg(item->data(Qt::UserRole).toString(), typeName(rules.type)).arg(on));
        QFont font = m_columns->font();
        font.setBold(on > 0);
        item->setFont(font);
    }
}

void VerifyRulesParameterWidget::onTableEdited(QTableWidget *table, bool burst)
{
    if (table == m_columnTable) {
        storeColumn();
        updateColumnTexts();
    }
    commitChange(burst);
}

QVariant VerifyRulesParameterWidget::value() const
{
    VerifyRulesValue value = m_value;
    value.datasetRules = rulesOf(m_datasetTable);
    if (m_shownColumn >= 0 && m_shownColumn < m_ids.size()) {
        VerifyColumnRules rules;
        rules.type = m_type->currentIndex();
        rules.rules = rulesOf(m_columnTable);
        if (m_shownStored || !(rules == m_shownInitial))
            value.columns.insert(m_ids.at(m_shownColumn), rules);
    }
    return QVariant::fromValue(value);
}

QWidget *VerifyRulesParameterWidget::focusTarget() const
{
    return m_datasetTable;
}
