#include "workbench/itemwidgetio.h"

#include "core/settings.h"
#include "flow/fileformat.h"
#include "flow/graphscene.h"
#include "inputs/delimitedreader.h"
#include "inputs/excelsheet.h"
#include "inputs/inputdocument.h"
#include "inputs/inputnode.h"
#include "inputs/xlsreader.h"
#include "inputs/xlsxreader.h"
#include "outputs/outputnode.h"
#include "workbench/optiondialogs.h"
#include "workbench/prompts.h"

#include <QApplication>
#include <QButtonGroup>
#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QDesktopServices>
#include <QDialog>
#include <QDialogButtonBox>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QFontDatabase>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSaveFile>
#include <QSet>
#include <QRegularExpression>
#include <QSpinBox>
#include <QTextStream>
#include <QTextCodec>
#include <QToolButton>
#include <QUrl>
#include <QVBoxLayout>

#include <algorithm>

namespace {

// Input formats in the order the list offers them.
const int InputFormats[] = {0, 1, 2, 3, 4, 10, 5, 6};

QComboBox *makeCombo(QWidget *parent, const QStringList &items = QStringList())
{
    auto *combo = new QComboBox(parent);
    combo->addItems(items);
    // Long entries (codec names, column names) don't widen the pane.
    combo->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    combo->setMinimumContentsLength(8);
    ignoreWheelWithoutFocus(combo);
    return combo;
}

QWidget *pair(QWidget *parent, QWidget *first, QWidget *second, QWidget *third = nullptr)
{
    auto *widget = new QWidget(parent);
    auto *layout = new QHBoxLayout(widget);
    layout->setContentsMargins(0, 0, 0, 0);
    first->setParent(widget);
    second->setParent(widget);
    layout->addWidget(first, 1);
    layout->addWidget(second);
    if (third) {
        third->setParent(widget);
        layout->addWidget(third);
    }
    return widget;
}

void setFileState(QLineEdit *edit, bool missing)
{
    QPalette palette = edit->palette();
    palette.setColor(
        QPalette::Text, missing ? QColor(0xC8, 0x37, 0x2D) : QApplication::palette().color(QPalette::Text));
    edit->setPalette(palette);
    edit->setToolTip(missing ? ItemWidget::tr("File not found") : QString());
}

QString delimiterLabel(int delimiter)
{
    return delimiter == 0 ? ItemWidget::tr("Automatic") : DelimitedReader::label(delimiter);
}

QComboBox *makeDelimiterCombo(QWidget *parent)
{
    QComboBox *combo = makeCombo(parent);
    for (int delimiter = 0; delimiter <= 9; ++delimiter)
        combo->addItem(delimiterLabel(delimiter), delimiter);
    return combo;
}

QToolButton *variablesButton(QWidget *parent, QLineEdit *target, const QString &text = QStringLiteral("{…}"))
{
    auto *button = new QToolButton(parent);
    button->setText(text);
    button->setToolTip(ItemWidget::tr("Insert a variable"));
    button->setAccessibleName(button->toolTip());
    button->setPopupMode(QToolButton::InstantPopup);
    auto *menu = new QMenu(button);
    const QStringList variables = fileNameVariables();
    for (const QString &variable : variables) {
        menu->addAction(variable, target, [target, variable] {
            target->insert(variable);
            emit target->editingFinished();
        });
    }
    button->setMenu(menu);
    return button;
}

} // namespace

QStringList encodingNames(bool withAutomatic)
{
    // The toolkit's codec list is long and doesn't change while the program runs.
    static const QStringList all = [] {
        QStringList names;
        const QStringList common = {QStringLiteral("UTF-8"), QStringLiteral("UTF-16LE"),
            QStringLiteral("UTF-16BE"), QStringLiteral("UTF-32LE"), QStringLiteral("UTF-32BE"),
            QStringLiteral("ISO-8859-1"), QStringLiteral("ISO-8859-15"), QStringLiteral("Windows-1252"),
            QStringLiteral("Windows-1250"), QStringLiteral("Windows-1251"), QStringLiteral("Shift_JIS"),
            QStringLiteral("EUC-JP"), QStringLiteral("GB18030"), QStringLiteral("Big5"),
            QStringLiteral("EUC-KR"), QStringLiteral("KOI8-R")};
        names << common << QString();
        QSet<QString> seen;
        for (const QString &name : common)
            seen.insert(name.toLower());
        QStringList others;
        const QList<QByteArray> codecs = QTextCodec::availableCodecs();
        for (const QByteArray &codec : codecs) {
            const QString name = QString::fromLatin1(codec);
            if (!seen.contains(name.toLower())) {
                seen.insert(name.toLower());
                others << name;
            }
        }
        std::sort(others.begin(), others.end(),
            [](const QString &a, const QString &b) { return a.compare(b, Qt::CaseInsensitive) < 0; });
        return names + others;
    }();
    return withAutomatic ? QStringList(QStringLiteral("Automatic")) + all : all;
}

QStringList fileNameVariables()
{
    return {QStringLiteral("{date}"), QStringLiteral("{time}"), QStringLiteral("{datetime}"),
        QStringLiteral("{day}"), QStringLiteral("{month}"), QStringLiteral("{year}"),
        QStringLiteral("{hour}"), QStringLiteral("{minute}"), QStringLiteral("{second}"),
        QStringLiteral("{version}"), QStringLiteral("{computername}"), QStringLiteral("{username}"),
        QStringLiteral("{transformfname}")};
}

static void fillEncodings(QComboBox *combo, bool withAutomatic)
{
    const QStringList names = encodingNames(withAutomatic);
    for (const QString &name : names) {
        if (name.isEmpty())
            combo->insertSeparator(combo->count());
        else
            combo->addItem(name);
    }
}

// ---------------------------------------------------------------------------------------
// Input

InputItemWidget::InputItemWidget(InputNode *node, GraphScene *scene, QUndoStack *undoStack, QWidget *parent)
    : ItemWidget(node, scene, undoStack, parent)
{
    QWidget *form = formWidget();

    auto *sourceWidget = new QWidget(form);
    auto *sourceLayout = new QHBoxLayout(sourceWidget);
    sourceLayout->setContentsMargins(0, 0, 0, 0);
    m_sourceGroup = new QButtonGroup(this);
    auto *fileRadio = new QRadioButton(tr("File"), sourceWidget);
    auto *clipboardRadio = new QRadioButton(tr("Clipboard"), sourceWidget);
    m_sourceGroup->addButton(fileRadio, InputOptions::File);
    m_sourceGroup->addButton(clipboardRadio, InputOptions::Clipboard);
    sourceLayout->addWidget(fileRadio);
    sourceLayout->addWidget(clipboardRadio);
    sourceLayout->addStretch(1);
    row(QStringLiteral("Source"), sourceWidget);

    m_fileEdit = new QLineEdit(form);
    m_fileEdit->setAccessibleName(tr("File"));
    auto *browse = new QPushButton(tr("Browse..."), form);
    row(QStringLiteral("File"), pair(form, m_fileEdit, browse));

    m_sheetCombo = makeCombo(form);
    m_sheetCombo->setEditable(true);
    m_sheetCombo->setInsertPolicy(QComboBox::NoInsert);
    row(QStringLiteral("Sheet"), m_sheetCombo);

    auto *pastedWidget = new QWidget(form);
    auto *pastedLayout = new QHBoxLayout(pastedWidget);
    pastedLayout->setContentsMargins(0, 0, 0, 0);
    m_pastedLabel = new QLabel(pastedWidget);
    auto *pasteAgain = new QPushButton(tr("Paste &Again"), pastedWidget);
    auto *editText = new QPushButton(tr("&Edit..."), pastedWidget);
    auto *saveText = new QPushButton(tr("Save as &File..."), pastedWidget);
    pastedLayout->addWidget(m_pastedLabel, 1);
    pastedLayout->addWidget(pasteAgain);
    pastedLayout->addWidget(editText);
    pastedLayout->addWidget(saveText);
    row(QStringLiteral("Pasted text"), pastedWidget);

    m_formatCombo = makeCombo(form);
    for (int type : InputFormats) {
        if ((type == 1 || type == 2) && !InputNode::hasReader(type))
            continue;
        m_formatCombo->addItem(FileFormat::name(type), type);
    }
    row(QStringLiteral("Format"), m_formatCombo);

    m_delimiterCombo = makeDelimiterCombo(form);
    m_customDelimiterEdit = new QLineEdit(form);
    m_customDelimiterEdit->setMaxLength(1);
    m_customDelimiterEdit->setFixedWidth(
        m_customDelimiterEdit->fontMetrics().horizontalAdvance(QLatin1Char('M')) * 3);
    m_customDelimiterEdit->setAccessibleName(tr("Custom delimiter"));
    row(QStringLiteral("Delimiter"), pair(form, m_delimiterCombo, m_customDelimiterEdit));

    m_quotingCombo = makeCombo(form, {tr("Automatic"), tr("Quoted"), tr("Unquoted")});
    row(QStringLiteral("Quoting"), m_quotingCombo);
    m_repeatedCheck = new QCheckBox(tr("Ignore repeated delim"), form);
    row(QStringLiteral("Ignore repeated delim"), m_repeatedCheck);

    m_columnsCombo = makeCombo(form, {tr("Manual"), tr("Automatic")});
    m_widthsEdit = new QLineEdit(form);
    m_widthsEdit->setPlaceholderText(tr("Widths, such as 10, 8, 12"));
    m_widthsEdit->setAccessibleName(tr("Column widths"));
    auto *editWidths = new QPushButton(tr("Edit &Widths..."), form);
    editWidths->setToolTip(tr("Set the column boundaries on the file's first lines."));
    row(QStringLiteral("Columns"), pair(form, m_columnsCombo, m_widthsEdit, editWidths));
    m_columnsCombo->setAccessibleName(tr("Columns"));

    m_encodingCombo = makeCombo(form);
    fillEncodings(m_encodingCombo, true);
    row(QStringLiteral("Encoding"), m_encodingCombo);

    m_arraysCheck = new QCheckBox(tr("Arrays as rows"), form);
    row(QStringLiteral("Arrays as rows"), m_arraysCheck);

    m_longWideCombo = makeCombo(form, {tr("Wide (more columns)"), tr("Long (more rows)")});
    m_longWideCombo->setToolTip(
        tr("This choice applies to all XML and vCard inputs and is not saved in the .tflow file."));
    row(QStringLiteral("Repeated values"), m_longWideCombo);

    m_ignoreSpin = new QSpinBox(form);
    ignoreWheelWithoutFocus(m_ignoreSpin);
    m_ignoreSpin->setRange(0, 999999999);
    m_ignoreSpin->setPrefix(tr("First "));
    m_ignoreSpin->setSuffix(tr(" row(s)"));
    row(QStringLiteral("Ignore"), m_ignoreSpin);

    m_hasHeaderCombo = makeCombo(form, {tr("No"), tr("Yes"), tr("Guess")});
    row(QStringLiteral("Has header"), m_hasHeaderCombo);

    m_trimCheck = new QCheckBox(tr("Trim whitespace"), form);
    m_simplifyCheck = new QCheckBox(tr("Simplify whitespace"), form);
    m_emptyRowsCheck = new QCheckBox(tr("Ignore empty rows"), form);
    m_emptyColumnsCheck = new QCheckBox(tr("Ignore empty columns"), form);
    m_hiddenRowsCheck = new QCheckBox(tr("Ignore hidden Excel rows"), form);
    m_hiddenColumnsCheck = new QCheckBox(tr("Ignore hidden Excel columns"), form);
    row(QStringLiteral("Trim whitespace"), m_trimCheck);
    row(QStringLiteral("Simplify whitespace"), m_simplifyCheck);
    row(QStringLiteral("Ignore empty rows"), m_emptyRowsCheck);
    row(QStringLiteral("Ignore empty columns"), m_emptyColumnsCheck);
    row(QStringLiteral("Ignore hidden Excel rows"), m_hiddenRowsCheck);
    row(QStringLiteral("Ignore hidden Excel columns"), m_hiddenColumnsCheck);

    m_metaCombo = makeCombo(form, {tr("Not added"), tr("At start"), tr("At end"), tr("Every row")});
    row(QStringLiteral("Meta information"), m_metaCombo);
    m_metaTextEdit = new QLineEdit(form);
    m_metaTextEdit->setAccessibleName(tr("Meta information text"));
    row(QStringLiteral("Meta text"),
        pair(form, m_metaTextEdit, variablesButton(form, m_metaTextEdit, tr("Insert ▾"))));
    m_metaColumnEdit = new QLineEdit(form);
    row(QStringLiteral("Column name"), m_metaColumnEdit);

    m_schemaCheck = new QCheckBox(tr("Uses schema"), form);
    auto *schemaButton = new QPushButton(tr("&Schema..."), form);
    schemaButton->setToolTip(tr("The columns this input should have, and what to do when they differ."));
    auto *schemaRow = new QWidget(form);
    auto *schemaLayout = new QHBoxLayout(schemaRow);
    schemaLayout->setContentsMargins(0, 0, 0, 0);
    schemaLayout->addWidget(m_schemaCheck);
    schemaLayout->addWidget(schemaButton);
    schemaLayout->addStretch(1);
    row(QStringLiteral("Uses schema"), schemaRow);
    m_watchCheck = new QCheckBox(tr("Watch file for changes"), form);
    m_watchCheck->setToolTip(tr("Re-read the file 5 seconds after it changes."));
    row(QStringLiteral("Watch"), m_watchCheck);
    auto *reload = new QPushButton(tr("&Reload"), form);
    reload->setToolTip(tr("Read the input again"));
    auto *reloadRow = new QWidget(form);
    auto *reloadLayout = new QHBoxLayout(reloadRow);
    reloadLayout->setContentsMargins(0, 0, 0, 0);
    reloadLayout->addWidget(reload);
    reloadLayout->addStretch(1);
    row(QStringLiteral("Reload"), reloadRow);

    // Each control changes one option; the lambdas take the node's options as they are.
    auto change = [this](const QString &label, const std::function<void(InputOptions &)> &set,
                      bool burst = false) {
        if (!inputNode())
            return;
        InputOptions options = inputNode()->options();
        set(options);
        applyOptions(label, options, burst);
    };
    connect(m_sourceGroup, &QButtonGroup::idClicked, this, [this, change](int id) {
        InputNode *input = inputNode();
        if (!input)
            return;
        if (id == InputOptions::Clipboard && input->text().isEmpty()) {
            // Switching to pasted text with nothing pasted yet takes the clipboard's text.
            const QString text = QApplication::clipboard()->text();
            InputOptions options = input->options();
            options.source = InputOptions::Clipboard;
            if (!text.isEmpty())
                options.fileType = InputNode::guessTextFormat(text);
            recordEdit(tr("'%1' change").arg(tr("Source")), [options, text](Node *node) {
                auto *in = qobject_cast<InputNode *>(node);
                in->setOptions(options);
                in->setText(text);
            });
            updateFromNode();
            invalidateNow();
            return;
        }
        change(tr("Source"), [id](InputOptions &o) { o.source = id; });
    });
    connect(m_fileEdit, &QLineEdit::editingFinished, this, [this] {
        if (inputNode() && m_fileEdit->text() != QDir::toNativeSeparators(inputNode()->path()))
            setFile(QDir::fromNativeSeparators(m_fileEdit->text().trimmed()));
    });
    connect(browse, &QPushButton::clicked, this, [this] {
        const QString start = inputNode() && !inputNode()->path().isEmpty()
            ? QFileInfo(inputNode()->path()).absolutePath()
            : QString();
        const QString path = FileDialogs::instance()->openFile(this, tr("Input File"), start,
            tr("Data files (*.csv *.tsv *.txt *.log *.xlsx *.xlsm *.xls *.json *.geojson *.xml *.opml "
               "*.vcf);;All files (*)"));
        if (!path.isEmpty())
            setFile(path);
    });
    connect(m_sheetCombo, QOverload<int>::of(&QComboBox::activated), this, [this, change](int index) {
        const QString sheet = index == 0 ? QString() : m_sheetCombo->itemData(index).toString();
        change(tr("Sheet"), [sheet](InputOptions &o) { o.sheet = sheet; });
    });
    connect(m_sheetCombo->lineEdit(), &QLineEdit::editingFinished, this, [this, change] {
        const int index = m_sheetCombo->findText(m_sheetCombo->currentText());
        const QString sheet = index == 0 ? QString()
            : index > 0                  ? m_sheetCombo->itemData(index).toString()
                                         : m_sheetCombo->currentText().trimmed();
        if (inputNode() && sheet != inputNode()->worksheet())
            change(tr("Sheet"), [sheet](InputOptions &o) { o.sheet = sheet; });
    });
    connect(pasteAgain, &QPushButton::clicked, this, [this] {
        InputNode *input = inputNode();
        if (!input)
            return;
        const QString after = QApplication::clipboard()->text();
        recordEdit(tr("'%1' change").arg(tr("Pasted text")),
            [after](Node *node) { qobject_cast<InputNode *>(node)->setText(after); });
        updateFromNode();
        invalidateNow();
    });
    connect(editText, &QPushButton::clicked, this, [this] {
        InputNode *input = inputNode();
        if (!input)
            return;
        QDialog dialog(this);
        dialog.setObjectName(QStringLiteral("PastedTextDialog"));
        dialog.setWindowTitle(tr("Pasted Text"));
        auto *layout = new QVBoxLayout(&dialog);
        auto *edit = new QPlainTextEdit(&dialog);
        edit->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
        edit->setLineWrapMode(QPlainTextEdit::NoWrap);
        edit->setPlainText(input->text());
        auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, &dialog);
        connect(buttons, &QDialogButtonBox::accepted, &dialog, &QDialog::accept);
        connect(buttons, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);
        layout->addWidget(edit);
        layout->addWidget(buttons);
        dialog.resize(640, 420);
        if (dialog.exec() != QDialog::Accepted || !inputNode() || edit->toPlainText() == input->text())
            return;
        const QString after = edit->toPlainText();
        recordEdit(tr("'%1' change").arg(tr("Pasted text")),
            [after](Node *node) { qobject_cast<InputNode *>(node)->setText(after); });
        updateFromNode();
        invalidateNow();
    });
    connect(saveText, &QPushButton::clicked, this, [this, change] {
        InputNode *input = inputNode();
        if (!input)
            return;
        const QString path = FileDialogs::instance()->saveFile(
            this, tr("Save as File"), QStringLiteral("Pasted.csv"), tr("Text files (*.csv *.txt);;All files (*)"));
        if (path.isEmpty())
            return;
        QSaveFile file(path);
        if (!file.open(QIODevice::WriteOnly) || file.write(input->text().toUtf8()) < 0 || !file.commit()) {
            input->addWarning(tr("Unable to write '%1'").arg(QDir::toNativeSeparators(path)));
            refresh();
            return;
        }
        change(tr("Source"), [path](InputOptions &o) {
            o.source = InputOptions::File;
            o.path = path;
        });
    });
    connect(m_formatCombo, QOverload<int>::of(&QComboBox::activated), this, [this, change] {
        const int type = m_formatCombo->currentData().toInt();
        change(tr("Format"), [type](InputOptions &o) { o.fileType = type; });
    });
    connect(m_delimiterCombo, QOverload<int>::of(&QComboBox::activated), this, [this, change] {
        const int delimiter = m_delimiterCombo->currentData().toInt();
        change(tr("Delimiter"), [delimiter](InputOptions &o) { o.delimiter = delimiter; });
    });
    connect(m_customDelimiterEdit, &QLineEdit::textEdited, this, [this, change](const QString &text) {
        change(
            tr("Delimiter"),
            [text](InputOptions &o) { o.customDelimiter = text.isEmpty() ? QChar() : text.at(0); }, true);
    });
    connect(m_quotingCombo, QOverload<int>::of(&QComboBox::activated), this,
        [change](int index) { change(tr("Quoting"), [index](InputOptions &o) { o.quoting = index; }); });
    connect(m_repeatedCheck, &QCheckBox::toggled, this, [change](bool on) {
        change(tr("Ignore repeated delim"), [on](InputOptions &o) { o.ignoreRepeatedDelimiter = on; });
    });
    connect(m_columnsCombo, QOverload<int>::of(&QComboBox::activated), this, [change](int index) {
        change(tr("Columns"), [index](InputOptions &o) { o.fixedWidthColumns = index; });
    });
    connect(m_widthsEdit, &QLineEdit::textEdited, this, [change](const QString &text) {
        QList<int> widths;
        const QStringList parts =
            text.split(QRegularExpression(QStringLiteral("[,;\\s]+")), Qt::SkipEmptyParts);
        for (const QString &part : parts) {
            bool ok = false;
            const int width = part.toInt(&ok);
            if (ok && width > 0)
                widths << width;
        }
        change(
            tr("Columns"),
            [widths](InputOptions &o) {
                o.columnWidths = widths;
                o.fixedWidthColumns = 0;
            },
            true);
    });
    connect(m_encodingCombo, QOverload<int>::of(&QComboBox::activated), this, [this, change] {
        const QString encoding = m_encodingCombo->currentText();
        change(tr("Encoding"), [encoding](InputOptions &o) { o.encoding = encoding; });
    });
    connect(m_arraysCheck, &QCheckBox::toggled, this,
        [change](bool on) { change(tr("Arrays as rows"), [on](InputOptions &o) { o.arraysAsRows = on; }); });
    connect(m_longWideCombo, QOverload<int>::of(&QComboBox::activated), this, [this, change] {
        const QString value = m_longWideCombo->currentIndex() == 1 ? QStringLiteral("Long (more rows)")
                                                                   : QStringLiteral("Wide (more columns)");
        if (this->scene() && this->scene()->settings())
            this->scene()->settings()->setValue(QStringLiteral("defaults/inputs/long_or_wide"), value);
        change(tr("Repeated values"), [value](InputOptions &o) { o.longOrWide = value; });
    });
    connect(m_ignoreSpin, QOverload<int>::of(&QSpinBox::valueChanged), this, [this, change](int value) {
        change(
            tr("Ignore"), [value](InputOptions &o) { o.ignoreFirstRows = value; }, m_ignoreSpin->hasFocus());
    });
    connect(m_hasHeaderCombo, QOverload<int>::of(&QComboBox::activated), this,
        [change](int index) { change(tr("Has header"), [index](InputOptions &o) { o.hasHeader = index; }); });
    connect(m_trimCheck, &QCheckBox::toggled, this, [change](bool on) {
        change(tr("Trim whitespace"), [on](InputOptions &o) { o.trimWhitespace = on; });
    });
    connect(m_simplifyCheck, &QCheckBox::toggled, this, [change](bool on) {
        change(tr("Simplify whitespace"), [on](InputOptions &o) { o.simplifyWhitespace = on; });
    });
    connect(m_emptyRowsCheck, &QCheckBox::toggled, this, [change](bool on) {
        change(tr("Ignore empty rows"), [on](InputOptions &o) { o.ignoreEmptyRows = on; });
    });
    connect(m_emptyColumnsCheck, &QCheckBox::toggled, this, [change](bool on) {
        change(tr("Ignore empty columns"), [on](InputOptions &o) { o.ignoreEmptyColumns = on; });
    });
    connect(m_hiddenRowsCheck, &QCheckBox::toggled, this, [change](bool on) {
        change(tr("Ignore hidden Excel rows"), [on](InputOptions &o) { o.ignoreHiddenExcelRows = on; });
    });
    connect(m_hiddenColumnsCheck, &QCheckBox::toggled, this, [change](bool on) {
        change(tr("Ignore hidden Excel columns"), [on](InputOptions &o) { o.ignoreHiddenExcelColumns = on; });
    });
    connect(m_metaCombo, QOverload<int>::of(&QComboBox::activated), this, [change](int index) {
        change(tr("Meta information"), [index](InputOptions &o) { o.metaInformation = index; });
    });
    connect(m_metaTextEdit, &QLineEdit::textEdited, this, [change](const QString &text) {
        change(
            tr("Meta information"), [text](InputOptions &o) { o.metaInformationText = text; }, true);
    });
    connect(m_metaTextEdit, &QLineEdit::editingFinished, this, [this, change] {
        const QString text = m_metaTextEdit->text();
        if (inputNode() && inputNode()->options().metaInformationText != text)
            change(tr("Meta information"), [text](InputOptions &o) { o.metaInformationText = text; });
    });
    connect(m_metaColumnEdit, &QLineEdit::textEdited, this, [change](const QString &text) {
        change(
            tr("Column name"), [text](InputOptions &o) { o.metaInformationColumnName = text; }, true);
    });
    connect(m_schemaCheck, &QCheckBox::toggled, this,
        [change](bool on) { change(tr("Uses schema"), [on](InputOptions &o) { o.usesSchema = on; }); });
    connect(m_watchCheck, &QCheckBox::toggled, this,
        [change](bool on) { change(tr("Watch file for changes"), [on](InputOptions &o) { o.watch = on; }); });
    connect(editWidths, &QPushButton::clicked, this, &InputItemWidget::editWidths);
    connect(schemaButton, &QPushButton::clicked, this, &InputItemWidget::editSchema);
    connect(reload, &QPushButton::clicked, this, [this] {
        if (!inputNode() || !this->scene() || this->scene()->isRunning())
            return;
        inputNode()->setStatus(Node::NeedsUpdating, true);
        this->scene()->runIfAuto();
    });
}

int InputItemWidget::row(const QString &label, QWidget *widget)
{
    // Check boxes carry their own text; other rows show "label:" beside the widget.
    const bool ownLabel = qobject_cast<QCheckBox *>(widget) || label == QLatin1String("Reload")
        || label == QLatin1String("Meta text") || label == QLatin1String("Uses schema");
    const int index = addFormRow(ownLabel ? QString() : tr(label.toUtf8().constData()), widget);
    m_rowByLabel.insert(label, index);
    return index;
}

bool InputItemWidget::isRowShown(const QString &label) const
{
    return m_rowByLabel.contains(label) && isRowVisible(m_rowByLabel.value(label));
}

InputNode *InputItemWidget::inputNode() const
{
    return qobject_cast<InputNode *>(node());
}

void InputItemWidget::applyOptions(const QString &label, const InputOptions &options, bool burst, int mergeId)
{
    InputNode *input = inputNode();
    if (!input || isRunning())
        return;
    recordEdit(
        tr("'%1' change").arg(label),
        [options](Node *node) { qobject_cast<InputNode *>(node)->setOptions(options); }, mergeId, label);
    updateRows(options);
    if (burst)
        startInvalidateTimer();
    else
        invalidateNow();
}

void InputItemWidget::setFile(const QString &path)
{
    InputNode *input = inputNode();
    if (!input)
        return;
    InputOptions options = input->options();
    options.source = InputOptions::File;
    options.path = path;
    const int type = FileFormat::forExtension(QFileInfo(path).suffix());
    if (type != 11 && m_formatCombo->findData(type) >= 0)
        options.fileType = type;
    if (options.fileType != 1 && options.fileType != 2)
        options.sheet.clear();
    applyOptions(tr("File"), options);
    updateFromNode();
}

void InputItemWidget::updateRows(const InputOptions &options)
{
    const bool file = options.source == InputOptions::File;
    const int type = options.fileType;
    const bool excel = type == 1 || type == 2;
    const bool delimited = type == 0;
    auto show = [this](const char *label, bool visible) {
        setRowVisible(m_rowByLabel.value(QLatin1String(label)), visible);
    };
    show("File", file);
    show("Sheet", file && excel);
    show("Pasted text", !file);
    show("Delimiter", delimited);
    show("Quoting", delimited);
    show("Ignore repeated delim", delimited);
    show("Columns", type == 3);
    show("Encoding", !excel);
    show("Arrays as rows", type == 4);
    show("Repeated values", type == 5 || type == 6);
    show("Ignore hidden Excel rows", excel);
    show("Ignore hidden Excel columns", excel);
    show("Meta text", options.metaInformation != InputOptions::MetaNotAdded);
    show("Column name", options.metaInformation == InputOptions::MetaEveryRow);
    show("Watch", file);
    m_customDelimiterEdit->setEnabled(options.delimiter == 8);
    m_widthsEdit->setEnabled(options.fixedWidthColumns == 0);
}

void InputItemWidget::updateSheets()
{
    const InputNode *input = inputNode();
    const QString path = input ? input->path() : QString();
    const int type = input ? input->fileType() : 0;
    if (path == m_sheetsFor)
        return;
    m_sheetsFor = path;
    m_sheetCombo->clear();
    m_sheetCombo->addItem(tr("(first visible sheet)"), QString());
    if ((type != 1 && type != 2) || !QFileInfo(path).isFile())
        return;
    QString error;
    const QList<ExcelSheetEntry> sheets =
        type == 1 ? xlsxSheetNames(path, &error) : xlsSheetNames(path, &error);
    for (const ExcelSheetEntry &sheet : sheets)
        m_sheetCombo->addItem(sheet.hidden ? tr("%1 (hidden)").arg(sheet.name) : sheet.name, sheet.name);
}

void InputItemWidget::updateFromNode()
{
    const InputNode *input = inputNode();
    if (!input)
        return;
    InputOptions options = input->options();
    if (m_formatCombo->findData(options.fileType) < 0)
        options.fileType = input->effectiveFileType();
    blockFormSignals(true);
    m_sourceGroup->button(options.source == InputOptions::Clipboard ? 1 : 0)->setChecked(true);
    const QString nativePath = QDir::toNativeSeparators(options.path);
    if (!m_fileEdit->hasFocus() && m_fileEdit->text() != nativePath)
        m_fileEdit->setText(nativePath);
    setFileState(m_fileEdit, !options.path.isEmpty() && !QFileInfo(options.path).isFile());
    updateSheets();
    const int sheetIndex = options.sheet.isEmpty() ? 0 : m_sheetCombo->findData(options.sheet);
    if (sheetIndex >= 0)
        m_sheetCombo->setCurrentIndex(sheetIndex);
    else
        m_sheetCombo->setEditText(options.sheet);
    const QString text = input->text();
    m_pastedLabel->setText(tr("%1 characters, %2 lines")
                               .arg(text.size())
                               .arg(text.isEmpty() ? 0
                                                   : text.count(QLatin1Char('\n'))
                                           + (text.endsWith(QLatin1Char('\n')) ? 0 : 1)));
    m_formatCombo->setCurrentIndex(m_formatCombo->findData(options.fileType));
    m_delimiterCombo->setCurrentIndex(m_delimiterCombo->findData(options.delimiter));
    const QString custom = options.customDelimiter.isNull() ? QString() : QString(options.customDelimiter);
    if (m_customDelimiterEdit->text() != custom)
        m_customDelimiterEdit->setText(custom);
    m_quotingCombo->setCurrentIndex(qBound(0, options.quoting, 2));
    m_repeatedCheck->setChecked(options.ignoreRepeatedDelimiter);
    m_columnsCombo->setCurrentIndex(options.fixedWidthColumns == 0 ? 0 : 1);
    if (!m_widthsEdit->hasFocus()) {
        QStringList widths;
        for (int width : options.columnWidths)
            widths << QString::number(width);
        m_widthsEdit->setText(widths.join(QStringLiteral(", ")));
    }
    int encoding = m_encodingCombo->findText(options.encoding, Qt::MatchFixedString);
    if (encoding < 0) {
        m_encodingCombo->addItem(options.encoding);
        encoding = m_encodingCombo->count() - 1;
    }
    m_encodingCombo->setCurrentIndex(encoding);
    m_arraysCheck->setChecked(options.arraysAsRows);
    m_longWideCombo->setCurrentIndex(options.longOrWide.startsWith(QLatin1String("Long")) ? 1 : 0);
    m_ignoreSpin->setValue(options.ignoreFirstRows);
    m_hasHeaderCombo->setCurrentIndex(
        options.hasHeader == 0 || options.hasHeader == 1 ? options.hasHeader : 2);
    m_trimCheck->setChecked(options.trimWhitespace);
    m_simplifyCheck->setChecked(options.simplifyWhitespace);
    m_emptyRowsCheck->setChecked(options.ignoreEmptyRows);
    m_emptyColumnsCheck->setChecked(options.ignoreEmptyColumns);
    m_hiddenRowsCheck->setChecked(options.ignoreHiddenExcelRows);
    m_hiddenColumnsCheck->setChecked(options.ignoreHiddenExcelColumns);
    m_metaCombo->setCurrentIndex(qBound(0, options.metaInformation, 3));
    if (!m_metaTextEdit->hasFocus())
        m_metaTextEdit->setText(options.metaInformationText);
    if (!m_metaColumnEdit->hasFocus())
        m_metaColumnEdit->setText(options.metaInformationColumnName);
    m_schemaCheck->setChecked(options.usesSchema);
    m_watchCheck->setChecked(options.watch);
    blockFormSignals(false);
    updateRows(options);
}

void InputItemWidget::saveDefaults()
{
    if (inputNode() && scene() && scene()->settings())
        InputNode::rememberDefaults(inputNode()->options(), scene()->settings());
}

void InputItemWidget::restoreDefaults(bool factoryOnly)
{
    InputNode *input = inputNode();
    if (!input)
        return;
    const InputOptions current = input->options();
    InputOptions options = InputNode::defaultOptions(factoryOnly || !scene() ? nullptr : scene()->settings());
    // Where the data is stays; only how it is read goes back.
    options.source = current.source;
    options.path = current.path;
    options.sheet = current.sheet;
    options.fileType = current.fileType;
    recordEdit(tr("restore defaults"),
        [options](Node *node) { qobject_cast<InputNode *>(node)->setOptions(options); });
    if (factoryOnly)
        offerToForgetDefaults(QStringLiteral("defaults/inputs"), input->displayTypeName());
    updateFromNode();
    invalidateNow();
}

QStringList InputItemWidget::sampleLines() const
{
    const InputNode *input = inputNode();
    if (!input)
        return QStringList();
    QStringList lines;
    if (input->options().source == InputOptions::Clipboard) {
        lines = input->text().split(QRegularExpression(QStringLiteral("\r\n|\r|\n")));
    } else if (!input->sampleLines().isEmpty()) {
        lines = input->sampleLines();
        // The reader's sample ends with a count of the rows not shown.
        if (!lines.isEmpty() && lines.last().startsWith(QLatin1String("(+")))
            lines.removeLast();
    } else {
        QFile file(input->path());
        if (file.open(QIODevice::ReadOnly | QIODevice::Text)) {
            QTextStream stream(&file);
            while (lines.size() < 50 && !stream.atEnd())
                lines << stream.readLine();
        }
    }
    return lines.mid(0, 50);
}

void InputItemWidget::editWidths()
{
    InputNode *input = inputNode();
    if (!input || isRunning())
        return;
    FixedWidthsDialog dialog(sampleLines(), input->options().columnWidths, this);
    if (runOptionDialog(&dialog) != QDialog::Accepted || !inputNode())
        return;
    InputOptions options = inputNode()->options();
    const QList<int> widths = dialog.widths();
    if (widths == options.columnWidths && options.fixedWidthColumns == 0)
        return;
    options.columnWidths = widths;
    options.fixedWidthColumns = 0;
    applyOptions(tr("Columns"), options, false, ItemEditCommand::NoMerge);
    updateFromNode();
}

void InputItemWidget::editSchema()
{
    InputNode *input = inputNode();
    if (!input || isRunning())
        return;
    const InputSchemaSettings stored = InputDocument::schemaSettings(*input);
    SchemaDialog::Schema before;
    before.columnNames = stored.columnNames;
    before.missingValues = stored.missingValues;
    before.missingColumns = stored.missingColumns;
    before.reorderColumns = stored.reorderColumns;
    before.extraColumns = stored.extraColumns;
    const QStringList columns = input->dataset().hasColumns() ? input->dataset().displayHeaders() : QStringList();
    SchemaDialog dialog(before, columns, this);
    if (runOptionDialog(&dialog) != QDialog::Accepted || !inputNode())
        return;
    const SchemaDialog::Schema after = dialog.schema();
    if (after == before)
        return;
    InputSchemaSettings settings;
    settings.columnNames = after.columnNames;
    settings.missingValues = after.missingValues;
    settings.missingColumns = after.missingColumns;
    settings.reorderColumns = after.reorderColumns;
    settings.extraColumns = after.extraColumns;
    recordEdit(tr("'%1' change").arg(tr("Schema")), [settings](Node *node) {
        if (auto *in = qobject_cast<InputNode *>(node))
            InputDocument::setSchemaSettings(*in, settings);
    });
    invalidateNow();
}

// ---------------------------------------------------------------------------------------
// Output

OutputItemWidget::OutputItemWidget(
    OutputNode *node, GraphScene *scene, QUndoStack *undoStack, QWidget *parent)
    : ItemWidget(node, scene, undoStack, parent)
{
    QWidget *form = formWidget();
    m_outputToCombo = makeCombo(form, {tr("Single file"), tr("Multiple files")});
    row(QStringLiteral("Output to"), m_outputToCombo);

    m_fileEdit = new QLineEdit(form);
    m_fileEdit->setAccessibleName(tr("File"));
    m_fileEdit->setToolTip(tr("File name variables such as {date} are replaced when the file is written."));
    QToolButton *variables = variablesButton(form, m_fileEdit);
    auto *browse = new QPushButton(tr("Browse..."), form);
    row(QStringLiteral("File"), pair(form, m_fileEdit, variables, browse));

    m_filesColumnCombo = makeCombo(form);
    row(QStringLiteral("Files column"), m_filesColumnCombo);
    m_confirmCheck = new QCheckBox(tr("Confirm before writing"), form);
    row(QStringLiteral("Confirm before writing"), m_confirmCheck);

    m_sheetCombo = makeCombo(form);
    m_sheetCombo->setEditable(true);
    m_sheetCombo->setInsertPolicy(QComboBox::NoInsert);
    m_sheetCombo->lineEdit()->setPlaceholderText(QStringLiteral("Tabrelle"));
    row(QStringLiteral("Sheet"), m_sheetCombo);
    m_replaceSheetCheck = new QCheckBox(tr("Replace only this sheet"), form);
    m_replaceSheetCheck->setToolTip(tr(
        "Keep the workbook's other sheets and replace only this sheet. Uncheck to replace the whole file."));
    row(QStringLiteral("Replace only this sheet"), m_replaceSheetCheck);

    m_fileTypeCombo = makeCombo(form);
    for (int type = 0; type <= 10; ++type)
        m_fileTypeCombo->addItem(FileFormat::name(type), type);
    row(QStringLiteral("File type"), m_fileTypeCombo);

    m_writeModeCombo = makeCombo(form);
    for (int mode = 0; mode <= 3; ++mode)
        m_writeModeCombo->addItem(OutputNode::writeModeName(mode), mode);
    row(QStringLiteral("Write mode"), m_writeModeCombo);

    auto *headerWidget = new QWidget(form);
    auto *headerLayout = new QHBoxLayout(headerWidget);
    headerLayout->setContentsMargins(0, 0, 0, 0);
    m_headerCheck = new QCheckBox(tr("Write header"), headerWidget);
    m_headerIfEmptyCheck = new QCheckBox(tr("(if empty)"), headerWidget);
    headerLayout->addWidget(m_headerCheck);
    headerLayout->addWidget(m_headerIfEmptyCheck);
    headerLayout->addStretch(1);
    row(QStringLiteral("Write header"), headerWidget);

    m_delimiterCombo = makeDelimiterCombo(form);
    m_customDelimiterEdit = new QLineEdit(form);
    m_customDelimiterEdit->setMaxLength(1);
    m_customDelimiterEdit->setFixedWidth(
        m_customDelimiterEdit->fontMetrics().horizontalAdvance(QLatin1Char('M')) * 3);
    m_customDelimiterEdit->setAccessibleName(tr("Custom delimiter"));
    row(QStringLiteral("Delimiter"), pair(form, m_delimiterCombo, m_customDelimiterEdit));
    m_quotingCombo = makeCombo(form, {tr("Automatic"), tr("Quoted"), tr("Unquoted")});
    row(QStringLiteral("Quoting"), m_quotingCombo);
    m_lineEndingsCombo = makeCombo(form,
        {tr("Automatic"), tr("Windows (CRLF)"), tr("Mac\\Unix (LF)"), tr("Old Mac (CR)"),
            tr("Record separator (0x1E)")});
    row(QStringLiteral("Line endings"), m_lineEndingsCombo);
    m_encodingCombo = makeCombo(form);
    fillEncodings(m_encodingCombo, false);
    row(QStringLiteral("Encoding"), m_encodingCombo);
    m_bomCheck = new QCheckBox(tr("Byte Order Mark"), form);
    row(QStringLiteral("Byte Order Mark"), m_bomCheck);
    m_typesCombo = makeCombo(form, {tr("Automatic"), tr("All text"), tr("Manual")});
    m_typesCombo->setAccessibleName(tr("Types"));
    m_typesButton = new QPushButton(tr("Column &Types..."), form);
    m_typesButton->setToolTip(tr("Choose the type written for each column."));
    row(QStringLiteral("Types"), pair(form, m_typesCombo, m_typesButton));
    m_formattingCombo = makeCombo(form, {tr("Automatic"), tr("All text"), tr("Manual")});
    m_formattingCombo->setAccessibleName(tr("Formatting"));
    m_formatsButton = new QPushButton(tr("Column &Formats..."), form);
    m_formatsButton->setToolTip(tr("Choose the cell format written for each column."));
    row(QStringLiteral("Formatting"), pair(form, m_formattingCombo, m_formatsButton));
    m_templateCheck = new QCheckBox(tr("Use style template"), form);
    m_templateEdit = new QLineEdit(form);
    m_templateEdit->setAccessibleName(tr("Style template"));
    row(QStringLiteral("Use style template"), pair(form, m_templateCheck, m_templateEdit));

    // Made in the order of their rows, which is the order Tab takes.
    m_aboveRootEdit = new QPlainTextEdit(form);
    m_rootNameEdit = new QLineEdit(form);
    m_belowRootEdit = new QPlainTextEdit(form);
    m_rowNameEdit = new QLineEdit(form);
    for (QPlainTextEdit *edit : {m_aboveRootEdit, m_belowRootEdit}) {
        edit->setTabChangesFocus(true);
        edit->setFixedHeight(edit->fontMetrics().lineSpacing() * 3 + 12);
    }
    row(QStringLiteral("Above root"), m_aboveRootEdit);
    row(QStringLiteral("Root name"), m_rootNameEdit);
    row(QStringLiteral("Below root"), m_belowRootEdit);
    row(QStringLiteral("Row name"), m_rowNameEdit);
    m_escapeCheck = new QCheckBox(tr("Escape special"), form);
    row(QStringLiteral("Escape special"), m_escapeCheck);
    m_removeEmptyCheck = new QCheckBox(tr("Remove empty"), form);
    m_removeEmptyCheck->setToolTip(tr("Leave out empty values instead of writing them as empty."));
    row(QStringLiteral("Remove empty"), m_removeEmptyCheck);
    m_fileCommentEdit = new QLineEdit(form);
    m_fileCommentEdit->setToolTip(
        tr("%1 is the product, %2 its version, %3 the date and %4 the time of writing."));
    row(QStringLiteral("File comment"), m_fileCommentEdit);

    auto *openRow = new QWidget(form);
    auto *openLayout = new QHBoxLayout(openRow);
    openLayout->setContentsMargins(0, 0, 0, 0);
    m_openFileButton = new QPushButton(tr("Open &File"), openRow);
    m_openFolderButton = new QPushButton(tr("Open F&older"), openRow);
    openLayout->addWidget(m_openFileButton);
    openLayout->addWidget(m_openFolderButton);
    openLayout->addStretch(1);
    row(QStringLiteral("Open"), openRow);

    auto change = [this](const QString &label, const std::function<void(OutputOptions &)> &set,
                      bool burst = false) {
        if (!outputNode())
            return;
        OutputOptions options = outputNode()->options();
        set(options);
        applyOptions(label, options, burst);
    };
    connect(m_outputToCombo, QOverload<int>::of(&QComboBox::activated), this,
        [change](int index) { change(tr("Output to"), [index](OutputOptions &o) { o.outputTo = index; }); });
    connect(m_fileEdit, &QLineEdit::editingFinished, this, [this] {
        if (outputNode() && m_fileEdit->text() != QDir::toNativeSeparators(outputNode()->path()))
            setFile(QDir::fromNativeSeparators(m_fileEdit->text().trimmed()));
    });
    connect(browse, &QPushButton::clicked, this, [this] {
        QString start = outputNode() ? outputNode()->path() : QString();
        if (start.isEmpty())
            start = QStringLiteral("Output.csv");
        const QString path = FileDialogs::instance()->saveFile(this, tr("Output File"), start, QString());
        if (!path.isEmpty())
            setFile(path);
    });
    connect(m_filesColumnCombo, QOverload<int>::of(&QComboBox::activated), this, [change](int index) {
        change(tr("Files column"), [index](OutputOptions &o) { o.filesColumn = index; });
    });
    connect(m_confirmCheck, &QCheckBox::toggled, this, [change](bool on) {
        change(tr("Confirm before writing"), [on](OutputOptions &o) { o.confirmMultiFile = on; });
    });
    connect(m_sheetCombo->lineEdit(), &QLineEdit::textEdited, this, [change](const QString &text) {
        change(
            tr("Sheet"), [text](OutputOptions &o) { o.sheet = text.trimmed(); }, true);
    });
    connect(m_replaceSheetCheck, &QCheckBox::toggled, this, [change](bool on) {
        change(tr("Replace only this sheet"), [on](OutputOptions &o) { o.replaceOnlyThisSheet = on; });
    });
    connect(m_fileTypeCombo, QOverload<int>::of(&QComboBox::activated), this,
        [this] { setFileType(m_fileTypeCombo->currentData().toInt()); });
    connect(m_typesButton, &QPushButton::clicked, this, &OutputItemWidget::editColumnTypes);
    connect(m_formatsButton, &QPushButton::clicked, this, &OutputItemWidget::editColumnFormats);
    connect(m_writeModeCombo, QOverload<int>::of(&QComboBox::activated), this, [change](int index) {
        change(tr("Write mode"), [index](OutputOptions &o) { o.writeMode = index; });
    });
    connect(m_headerCheck, &QCheckBox::toggled, this,
        [change](bool on) { change(tr("Write header"), [on](OutputOptions &o) { o.writeHeader = on; }); });
    connect(m_headerIfEmptyCheck, &QCheckBox::toggled, this, [change](bool on) {
        change(tr("Write header"), [on](OutputOptions &o) { o.writeHeaderOnlyIfEmpty = on; });
    });
    connect(m_delimiterCombo, QOverload<int>::of(&QComboBox::activated), this, [this, change] {
        const int delimiter = m_delimiterCombo->currentData().toInt();
        change(tr("Delimiter"), [delimiter](OutputOptions &o) { o.delimiter = delimiter; });
    });
    connect(m_customDelimiterEdit, &QLineEdit::textEdited, this, [change](const QString &text) {
        change(
            tr("Delimiter"),
            [text](OutputOptions &o) { o.customDelimiter = text.isEmpty() ? QChar() : text.at(0); }, true);
    });
    connect(m_quotingCombo, QOverload<int>::of(&QComboBox::activated), this,
        [change](int index) { change(tr("Quoting"), [index](OutputOptions &o) { o.quoting = index; }); });
    connect(m_lineEndingsCombo, QOverload<int>::of(&QComboBox::activated), this, [change](int index) {
        change(tr("Line endings"), [index](OutputOptions &o) { o.lineEndings = index; });
    });
    connect(m_encodingCombo, QOverload<int>::of(&QComboBox::activated), this, [this, change] {
        const QString encoding = m_encodingCombo->currentText();
        change(tr("Encoding"), [encoding](OutputOptions &o) { o.encoding = encoding; });
    });
    connect(m_bomCheck, &QCheckBox::toggled, this, [change](bool on) {
        change(tr("Byte Order Mark"), [on](OutputOptions &o) { o.byteOrderMark = on; });
    });
    connect(m_typesCombo, QOverload<int>::of(&QComboBox::activated), this,
        [change](int index) { change(tr("Types"), [index](OutputOptions &o) { o.jsonTypes = index; }); });
    connect(m_formattingCombo, QOverload<int>::of(&QComboBox::activated), this, [change](int index) {
        change(tr("Formatting"), [index](OutputOptions &o) { o.excelFormatting = index; });
    });
    connect(m_templateCheck, &QCheckBox::toggled, this, [change](bool on) {
        change(tr("Use style template"), [on](OutputOptions &o) { o.useStyleTemplate = on; });
    });
    connect(m_templateEdit, &QLineEdit::textEdited, this, [change](const QString &text) {
        change(
            tr("Use style template"), [text](OutputOptions &o) { o.styleTemplate = text; }, true);
    });
    connect(m_aboveRootEdit, &QPlainTextEdit::textChanged, this, [this, change] {
        const QString text = m_aboveRootEdit->toPlainText();
        change(
            tr("Above root"), [text](OutputOptions &o) { o.xmlAboveRoot = text; }, true);
    });
    connect(m_belowRootEdit, &QPlainTextEdit::textChanged, this, [this, change] {
        const QString text = m_belowRootEdit->toPlainText();
        change(
            tr("Below root"), [text](OutputOptions &o) { o.xmlBelowRoot = text; }, true);
    });
    connect(m_rootNameEdit, &QLineEdit::textEdited, this, [change](const QString &text) {
        change(
            tr("Root name"), [text](OutputOptions &o) { o.xmlRootName = text; }, true);
    });
    connect(m_rowNameEdit, &QLineEdit::textEdited, this, [change](const QString &text) {
        change(
            tr("Row name"), [text](OutputOptions &o) { o.xmlRowName = text; }, true);
    });
    connect(m_escapeCheck, &QCheckBox::toggled, this,
        [change](bool on) { change(tr("Escape special"), [on](OutputOptions &o) { o.escapeHtml = on; }); });
    connect(m_removeEmptyCheck, &QCheckBox::toggled, this,
        [change](bool on) { change(tr("Remove empty"), [on](OutputOptions &o) { o.removeEmpty = on; }); });
    connect(m_fileCommentEdit, &QLineEdit::textEdited, this, [change](const QString &text) {
        change(
            tr("File comment"), [text](OutputOptions &o) { o.fileComment = text; }, true);
    });
    connect(m_openFileButton, &QPushButton::clicked, this, [this] {
        if (outputNode())
            QDesktopServices::openUrl(
                QUrl::fromLocalFile(QFileInfo(outputNode()->path()).absoluteFilePath()));
    });
    connect(m_openFolderButton, &QPushButton::clicked, this, [this] {
        if (outputNode())
            QDesktopServices::openUrl(QUrl::fromLocalFile(QFileInfo(writtenPath()).absolutePath()));
    });
}

int OutputItemWidget::row(const QString &label, QWidget *widget)
{
    const bool ownLabel = qobject_cast<QCheckBox *>(widget) || label == QLatin1String("Write header")
        || label == QLatin1String("Use style template") || label == QLatin1String("Open");
    const int index = addFormRow(ownLabel ? QString() : tr(label.toUtf8().constData()), widget);
    m_rowByLabel.insert(label, index);
    return index;
}

bool OutputItemWidget::isRowShown(const QString &label) const
{
    return m_rowByLabel.contains(label) && isRowVisible(m_rowByLabel.value(label));
}

QString OutputItemWidget::writtenPath() const
{
    const OutputNode *output = outputNode();
    if (!output)
        return QString();
    return output->targetPath().isEmpty() ? output->path() : output->targetPath();
}

OutputNode *OutputItemWidget::outputNode() const
{
    return qobject_cast<OutputNode *>(node());
}

QString OutputItemWidget::connectionHint() const
{
    const OutputNode *output = outputNode();
    if (!output || !output->upstream(false).isEmpty())
        return QString();
    return tr("Connect %1 to this item.").arg(tr("1 Input/Transform item"));
}

void OutputItemWidget::applyOptions(const QString &label, const OutputOptions &options, bool burst, int mergeId)
{
    OutputNode *output = outputNode();
    if (!output || isRunning())
        return;
    recordEdit(
        tr("'%1' change").arg(label),
        [options](Node *node) { qobject_cast<OutputNode *>(node)->setOptions(options); }, mergeId, label);
    updateRows(options);
    if (burst)
        startInvalidateTimer();
    else
        invalidateNow();
}

void OutputItemWidget::setFile(const QString &path)
{
    OutputNode *output = outputNode();
    if (!output)
        return;
    OutputOptions options = output->options();
    options.path = path;
    const int type = FileFormat::forExtension(QFileInfo(path).suffix());
    if (type != 11)
        options.fileType = type;
    applyOptions(tr("File"), options);
    updateFromNode();
}

void OutputItemWidget::setFileType(int type)
{
    OutputNode *output = outputNode();
    if (!output || isRunning())
        return;
    OutputOptions options = output->options();
    if (options.fileType == type)
        return;
    options.fileType = type;
    // A name whose extension says another type is offered the type's own extension.
    const QFileInfo info(options.path);
    const int named = info.suffix().isEmpty() ? 11 : FileFormat::forExtension(info.suffix());
    const QString extension = FileFormat::defaultExtension(type);
    if (options.outputTo == OutputOptions::SingleFile && named != 11 && named != type && !extension.isEmpty()
        && Prompts::instance()->ask(this, tr("File type"), tr("Change file extension to '%1'?").arg(extension),
               QString(), {tr("&Yes"), tr("&No")}, 0, 1)
            == 0) {
        const QString path = options.path;
        options.path = path.left(path.size() - info.suffix().size()) + extension;
    }
    applyOptions(tr("File type"), options, false, ItemEditCommand::NoMerge);
    updateFromNode();
}

QStringList OutputItemWidget::upstreamColumns() const
{
    const OutputNode *output = outputNode();
    const Node *upstream = output ? output->upstream(false).value(0) : nullptr;
    return upstream && upstream->dataset().hasColumns() ? upstream->dataset().displayHeaders() : QStringList();
}

void OutputItemWidget::editColumnTypes()
{
    if (!outputNode() || isRunning())
        return;
    ColumnTypesDialog dialog(upstreamColumns(), outputNode()->options().jsonManualColumnTypes, this);
    if (runOptionDialog(&dialog) != QDialog::Accepted || !outputNode())
        return;
    OutputOptions options = outputNode()->options();
    const QList<int> types = dialog.values();
    if (types == options.jsonManualColumnTypes)
        return;
    options.jsonManualColumnTypes = types;
    applyOptions(tr("Types"), options, false, ItemEditCommand::NoMerge);
}

void OutputItemWidget::editColumnFormats()
{
    if (!outputNode() || isRunning())
        return;
    ColumnFormatsDialog dialog(upstreamColumns(), outputNode()->options().excelManualColumnFormats, this);
    if (runOptionDialog(&dialog) != QDialog::Accepted || !outputNode())
        return;
    OutputOptions options = outputNode()->options();
    const QList<int> formats = dialog.values();
    if (formats == options.excelManualColumnFormats)
        return;
    options.excelManualColumnFormats = formats;
    applyOptions(tr("Formatting"), options, false, ItemEditCommand::NoMerge);
}

void OutputItemWidget::updateRows(const OutputOptions &options)
{
    const bool single = options.outputTo == OutputOptions::SingleFile;
    const int type = options.fileType;
    const bool excel = type == 1 || type == 2;
    const bool text = !excel;
    auto show = [this](const char *label, bool visible) {
        setRowVisible(m_rowByLabel.value(QLatin1String(label)), visible);
    };
    show("File", single);
    show("Files column", !single);
    show("Confirm before writing", !single);
    show("Sheet", excel);
    show("Replace only this sheet", excel && options.writeMode == OutputOptions::Overwrite);
    show("Write header", type == 0 || type == 3 || type == 10 || type == 8 || type == 9 || excel);
    show("Delimiter", type == 0);
    show("Quoting", type == 0);
    show("Line endings", text);
    show("Encoding", text);
    show("Byte Order Mark", text);
    show("Types", type == 4 || type == 7);
    show("Formatting", excel);
    show("Use style template", type == 1);
    show("Above root", type == 5);
    show("Root name", type == 5);
    show("Below root", type == 5);
    show("Row name", type == 5);
    show("Escape special", type == 8 || type == 9);
    show("Remove empty", type == 4 || type == 5 || type == 7 || type == 6);
    show("File comment", type == 5 || type == 8 || type == 7);
    m_headerIfEmptyCheck->setEnabled(options.writeMode == OutputOptions::Append && options.writeHeader);
    m_customDelimiterEdit->setEnabled(options.delimiter == 8);
    m_bomCheck->setEnabled(options.encoding.contains(QLatin1String("utf"), Qt::CaseInsensitive));
    m_typesButton->setEnabled(options.jsonTypes == OutputOptions::TypesManual);
    m_formatsButton->setEnabled(options.excelFormatting == OutputOptions::TypesManual);
    m_templateEdit->setEnabled(options.useStyleTemplate);
    // The file last written, with its variables expanded, else the path as typed.
    const QString written =
        outputNode() && !outputNode()->targetPath().isEmpty() ? outputNode()->targetPath() : options.path;
    const bool exists = single && QFileInfo(written).isFile();
    m_openFileButton->setEnabled(exists);
    m_openFolderButton->setEnabled(exists || QFileInfo(QFileInfo(written).absolutePath()).isDir());
}

void OutputItemWidget::updateFromNode()
{
    const OutputNode *output = outputNode();
    if (!output)
        return;
    const OutputOptions options = output->options();
    blockFormSignals(true);
    m_outputToCombo->setCurrentIndex(options.outputTo == OutputOptions::MultipleFiles ? 1 : 0);
    const QString nativePath = QDir::toNativeSeparators(options.path);
    if (!m_fileEdit->hasFocus() && m_fileEdit->text() != nativePath)
        m_fileEdit->setText(nativePath);
    m_filesColumnCombo->clear();
    m_filesColumnCombo->addItem(tr("<None selected>"));
    const Node *upstream = output->upstream(false).value(0);
    if (upstream)
        m_filesColumnCombo->addItems(upstream->dataset().displayHeaders());
    if (options.filesColumn >= m_filesColumnCombo->count())
        m_filesColumnCombo->addItem(tr("<Missing column>"));
    m_filesColumnCombo->setCurrentIndex(qMin(options.filesColumn, m_filesColumnCombo->count() - 1));
    m_confirmCheck->setChecked(options.confirmMultiFile);
    if (!m_sheetCombo->hasFocus())
        m_sheetCombo->setEditText(options.sheet);
    m_replaceSheetCheck->setChecked(options.replaceOnlyThisSheet);
    m_fileTypeCombo->setCurrentIndex(m_fileTypeCombo->findData(options.fileType));
    m_writeModeCombo->setCurrentIndex(qBound(0, options.writeMode, 3));
    m_headerCheck->setChecked(options.writeHeader);
    m_headerIfEmptyCheck->setChecked(options.writeHeaderOnlyIfEmpty);
    m_delimiterCombo->setCurrentIndex(m_delimiterCombo->findData(options.delimiter));
    const QString custom = options.customDelimiter.isNull() ? QString() : QString(options.customDelimiter);
    if (m_customDelimiterEdit->text() != custom)
        m_customDelimiterEdit->setText(custom);
    m_quotingCombo->setCurrentIndex(qBound(0, options.quoting, 2));
    m_lineEndingsCombo->setCurrentIndex(qBound(0, options.lineEndings, 4));
    int encoding = m_encodingCombo->findText(options.encoding, Qt::MatchFixedString);
    if (encoding < 0) {
        m_encodingCombo->addItem(options.encoding);
        encoding = m_encodingCombo->count() - 1;
    }
    m_encodingCombo->setCurrentIndex(encoding);
    m_bomCheck->setChecked(options.byteOrderMark);
    m_typesCombo->setCurrentIndex(qBound(0, options.jsonTypes, 2));
    m_formattingCombo->setCurrentIndex(qBound(0, options.excelFormatting, 2));
    m_templateCheck->setChecked(options.useStyleTemplate);
    if (!m_templateEdit->hasFocus())
        m_templateEdit->setText(options.styleTemplate);
    if (m_aboveRootEdit->toPlainText() != options.xmlAboveRoot)
        m_aboveRootEdit->setPlainText(options.xmlAboveRoot);
    if (m_belowRootEdit->toPlainText() != options.xmlBelowRoot)
        m_belowRootEdit->setPlainText(options.xmlBelowRoot);
    if (!m_rootNameEdit->hasFocus())
        m_rootNameEdit->setText(options.xmlRootName);
    if (!m_rowNameEdit->hasFocus())
        m_rowNameEdit->setText(options.xmlRowName);
    m_escapeCheck->setChecked(options.escapeHtml);
    m_removeEmptyCheck->setChecked(options.removeEmpty);
    if (!m_fileCommentEdit->hasFocus())
        m_fileCommentEdit->setText(options.fileComment);
    blockFormSignals(false);
    updateRows(options);
}

void OutputItemWidget::saveDefaults()
{
    if (outputNode() && scene() && scene()->settings())
        outputNode()->saveDefaults(scene()->settings());
}

void OutputItemWidget::restoreDefaults(bool factoryOnly)
{
    OutputNode *output = outputNode();
    if (!output)
        return;
    const OutputOptions current = output->options();
    output->applyDefaults(factoryOnly || !scene() ? nullptr : scene()->settings());
    const OutputOptions options = output->options();
    output->setOptions(current);
    recordEdit(tr("restore defaults"),
        [options](Node *node) { qobject_cast<OutputNode *>(node)->setOptions(options); });
    if (factoryOnly)
        offerToForgetDefaults(QStringLiteral("defaults/outputs"), output->displayTypeName());
    updateFromNode();
    invalidateNow();
}
