// The input, output, note and flow panes: rows that follow the format, option edits and
// dialogs as undo steps, the defaults menu, the messages, and the item section shared by
// every pane.

#include "testutil.h"

#include "app/application.h"
#include "charts/chartnode.h"
#include "core/settings.h"
#include "flow/fileformat.h"
#include "flow/graphscene.h"
#include "flow/notenode.h"
#include "inputs/inputdocument.h"
#include "inputs/inputnode.h"
#include "outputs/outputnode.h"
#include "workbench/helpwindow.h"
#include "workbench/itempane.h"
#include "workbench/itemwidgetchart.h"
#include "workbench/itemwidgetio.h"
#include "workbench/itemwidgetnote.h"
#include "workbench/optiondialogs.h"
#include "workbench/prompts.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTableWidget>
#include <QToolButton>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QUndoStack>
#include <QtTest>

class TestItemPanes : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup();
    void inputRowsFollowFormat_data();
    void inputRowsFollowFormat();
    void inputOptionStep();
    void outputRowsFollowFileType_data();
    void outputRowsFollowFileType();
    void aliasAndComment();
    void dialogSteps_data();
    void dialogSteps();
    void fixedWidthsDialog_data();
    void fixedWidthsDialog();
    void defaultsRoundTrip_data();
    void defaultsRoundTrip();
    void messages_data();
    void messages();
    void outputFileTypeExtension_data();
    void outputFileTypeExtension();
    void multiFileConfirmation_data();
    void multiFileConfirmation();
    void noteSteps_data();
    void noteSteps();
    void flowSummary();
    void helpButton_data();
    void helpButton();
    void rename_data();
    void rename();
    void themeColours_data();
    void themeColours();
    void tabOrder_data();
    void tabOrder();

private:
    QPushButton *button(const QString &text) const;
    OutputNode *addOutput(int fileType);
    // The item a data row names: the input, a new output, chart or note, or none for "flow".
    Node *itemNamed(const QString &item);
    // Undo and redo replace the items; this finds the input again by id.
    InputNode *input() const { return qobject_cast<InputNode *>(m_scene->node(m_inputId)); }

    std::unique_ptr<QTemporaryDir> m_dir;
    std::unique_ptr<Settings> m_settings;
    std::unique_ptr<GraphScene> m_scene;
    std::unique_ptr<QUndoStack> m_undoStack;
    std::unique_ptr<ItemPane> m_pane;
    ScriptedPrompts m_prompts;
    InputNode *m_input = nullptr;
    int m_inputId = -1;
};

void TestItemPanes::init()
{
    m_dir = std::make_unique<QTemporaryDir>();
    m_settings = std::make_unique<Settings>(m_dir->filePath(QStringLiteral("tabrelle.ini")));
    m_scene = std::make_unique<GraphScene>();
    m_scene->setSettings(m_settings.get());
    m_undoStack = std::make_unique<QUndoStack>();
    m_input = new InputNode;
    m_scene->addNode(m_input);
    Dataset dataset = testutil::toDataset("a,b,c\n1,x,2021-01-01\n2,y,2021-01-02", true);
    dataset.assignColumnIds(m_input->id());
    m_input->setDataset(dataset);
    m_input->setStatus(Node::UpToDate, false);
    m_inputId = m_input->id();
    m_pane = std::make_unique<ItemPane>();
    m_pane->setScene(m_scene.get(), m_undoStack.get());
    m_pane->resize(500, 900);
    m_prompts = ScriptedPrompts();
    Prompts::setInstance(&m_prompts);
}

void TestItemPanes::cleanup()
{
    Prompts::setInstance(nullptr);
    setOptionDialogRunner(nullptr);
    m_pane.reset();
    m_undoStack.reset();
    m_scene.reset();
    m_settings.reset();
}

void TestItemPanes::inputRowsFollowFormat_data()
{
    QTest::addColumn<int>("format");
    QTest::addColumn<QStringList>("shown");
    QTest::addColumn<QStringList>("hidden");
    QTest::newRow("delimited") << 0 << QStringList {"Delimiter", "Quoting", "Encoding", "File"}
                               << QStringList {"Sheet", "Columns", "Arrays as rows", "Pasted text"};
    QTest::newRow("fixed width") << 3 << QStringList {"Columns", "Encoding"}
                                 << QStringList {"Delimiter", "Sheet"};
    QTest::newRow("json") << 4 << QStringList {"Arrays as rows"}
                          << QStringList {"Delimiter", "Repeated values"};
    QTest::newRow("xml") << 5 << QStringList {"Repeated values"} << QStringList {"Arrays as rows"};
    QTest::newRow("xlsx") << 1
                          << QStringList {"Sheet", "Ignore hidden Excel rows", "Ignore hidden Excel columns"}
                          << QStringList {"Encoding", "Delimiter", "Columns"};
    QTest::newRow("plain text") << 10 << QStringList {"Encoding", "Has header", "Uses schema"}
                                << QStringList {"Delimiter", "Sheet", "Repeated values", "Columns"};
    QTest::newRow("vcard") << 6 << QStringList {"Repeated values", "Encoding"} << QStringList {"Arrays as rows"};
}

void TestItemPanes::inputRowsFollowFormat()
{
    QFETCH(int, format);
    QFETCH(QStringList, shown);
    QFETCH(QStringList, hidden);
    InputOptions options = m_input->options();
    options.fileType = format;
    m_input->setOptions(options);
    m_pane->setCurrentNode(m_input);
    auto *widget = qobject_cast<InputItemWidget *>(m_pane->itemWidget());
    QVERIFY(widget);
    for (const QString &row : shown)
        QVERIFY2(widget->isRowShown(row), qPrintable(row));
    for (const QString &row : hidden)
        QVERIFY2(!widget->isRowShown(row), qPrintable(row));
}

void TestItemPanes::inputOptionStep()
{
    m_pane->setCurrentNode(m_input);
    m_pane->show();
    auto *widget = qobject_cast<InputItemWidget *>(m_pane->itemWidget());
    QVERIFY(widget);
    QComboBox *headers = widget->hasHeaderCombo();
    headers->setFocus();
    QTest::keyClick(headers, Qt::Key_Up);
    const int chosen = headers->currentIndex();
    QCOMPARE(m_undoStack->count(), 1);
    QCOMPARE(m_undoStack->text(0), QStringLiteral("'Has header' change"));
    QCOMPARE(m_input->options().hasHeader, headers->currentIndex());
    QCOMPARE(m_input->status(), int(Node::NeedsUpdating));

    // Choosing a file sets the format from its extension, in one step.
    widget->setFile(m_dir->filePath(QStringLiteral("data.json")));
    QCOMPARE(m_undoStack->count(), 2);
    QCOMPARE(m_input->options().fileType, 4);
    QVERIFY(widget->isRowShown(QStringLiteral("Arrays as rows")));
    // The missing file shows as such.
    QCOMPARE(widget->fileEdit()->toolTip(), QStringLiteral("File not found"));
    m_undoStack->undo();
    QCOMPARE(input()->path(), QString());
    QCOMPARE(input()->options().hasHeader, chosen);
}

void TestItemPanes::outputRowsFollowFileType_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QStringList>("shown");
    QTest::addColumn<QStringList>("hidden");
    QTest::newRow("delimited") << 0 << QStringList {"Delimiter", "Line endings", "Write header"}
                               << QStringList {"Sheet", "Root name", "Types"};
    QTest::newRow("xlsx") << 1 << QStringList {"Sheet", "Formatting", "Use style template", "Write header"}
                          << QStringList {"Encoding", "Delimiter"};
    QTest::newRow("xml") << 5 << QStringList {"Root name", "Row name", "Remove empty", "File comment"}
                         << QStringList {"Write header", "Delimiter"};
    QTest::newRow("json") << 4 << QStringList {"Types", "Remove empty"} << QStringList {"Write header"};
    QTest::newRow("xls") << 2 << QStringList {"Sheet", "Formatting", "Replace only this sheet"}
                         << QStringList {"Use style template", "Byte Order Mark", "Types"};
    QTest::newRow("html") << 8 << QStringList {"Escape special", "File comment", "Write header", "Encoding"}
                          << QStringList {"Remove empty", "Root name", "Sheet"};
    QTest::newRow("markdown") << 9 << QStringList {"Escape special", "Write header"}
                              << QStringList {"File comment", "Remove empty"};
    QTest::newRow("yaml") << 7 << QStringList {"Types", "Remove empty", "File comment"}
                          << QStringList {"Escape special", "Write header"};
}

void TestItemPanes::outputRowsFollowFileType()
{
    QFETCH(int, type);
    QFETCH(QStringList, shown);
    QFETCH(QStringList, hidden);
    auto *output = new OutputNode;
    m_scene->addNode(output);
    OutputOptions options = output->options();
    options.fileType = type;
    output->setOptions(options);
    m_pane->setCurrentNode(output);
    auto *widget = qobject_cast<OutputItemWidget *>(m_pane->itemWidget());
    QVERIFY(widget);
    for (const QString &row : shown)
        QVERIFY2(widget->isRowShown(row), qPrintable(row));
    for (const QString &row : hidden)
        QVERIFY2(!widget->isRowShown(row), qPrintable(row));
}

void TestItemPanes::aliasAndComment()
{
    m_pane->setCurrentNode(m_input);
    m_pane->show();
    QLineEdit *aliasEdit = nullptr;
    for (QLineEdit *edit : m_pane->itemWidget()->findChildren<QLineEdit *>()) {
        if (edit->accessibleName() == QLatin1String("Alias"))
            aliasEdit = edit;
    }
    QVERIFY(aliasEdit);
    aliasEdit->setText(QStringLiteral("  sales  "));
    emit aliasEdit->editingFinished();
    QCOMPARE(m_input->alias(), QStringLiteral("sales"));
    QCOMPARE(m_undoStack->text(m_undoStack->count() - 1), QStringLiteral("alias change"));

    QPlainTextEdit *comment = nullptr;
    for (QPlainTextEdit *edit : m_pane->itemWidget()->findChildren<QPlainTextEdit *>()) {
        if (edit->accessibleName() == QLatin1String("Comment"))
            comment = edit;
    }
    QVERIFY(comment);
    const int steps = m_undoStack->count();
    comment->setFocus();
    QTest::keyClicks(comment, QStringLiteral("note"));
    QCOMPARE(m_input->comment(), QStringLiteral("note"));
    QCOMPARE(m_undoStack->count(), steps + 1);
    QCOMPARE(m_undoStack->text(steps), QStringLiteral("comment change"));
    m_undoStack->undo();
    QCOMPARE(input()->comment(), QString());
}

QPushButton *TestItemPanes::button(const QString &text) const
{
    for (QPushButton *button : m_pane->itemWidget()->findChildren<QPushButton *>()) {
        if (button->text() == text)
            return button;
    }
    return nullptr;
}

OutputNode *TestItemPanes::addOutput(int fileType)
{
    auto *output = new OutputNode;
    m_scene->addNode(output);
    m_scene->connectNodes(m_input, output);
    OutputOptions options = output->options();
    options.fileType = fileType;
    options.path = m_dir->filePath(QStringLiteral("out.csv"));
    output->setOptions(options);
    return output;
}

void TestItemPanes::dialogSteps_data()
{
    QTest::addColumn<QString>("item"); // "input" or the output's file type
    QTest::addColumn<QString>("buttonText");
    QTest::addColumn<bool>("accept");
    QTest::addColumn<QString>("step"); // empty: none
    QTest::newRow("widths OK") << "input" << "Edit &Widths..." << true << "'Columns' change";
    QTest::newRow("widths Cancel") << "input" << "Edit &Widths..." << false << "";
    QTest::newRow("schema OK") << "input" << "&Schema..." << true << "'Schema' change";
    QTest::newRow("schema Cancel") << "input" << "&Schema..." << false << "";
    QTest::newRow("types OK") << "json" << "Column &Types..." << true << "'Types' change";
    QTest::newRow("types Cancel") << "json" << "Column &Types..." << false << "";
    QTest::newRow("formats OK") << "xlsx" << "Column &Formats..." << true << "'Formatting' change";
    QTest::newRow("formats Cancel") << "xlsx" << "Column &Formats..." << false << "";
}

void TestItemPanes::dialogSteps()
{
    QFETCH(QString, item);
    QFETCH(QString, buttonText);
    QFETCH(bool, accept);
    QFETCH(QString, step);
    OutputNode *output = nullptr;
    if (item == QLatin1String("input")) {
        m_input->setText(QStringLiteral("ab  cd\n12  34"));
        InputOptions options = m_input->options();
        options.source = InputOptions::Clipboard;
        options.fileType = 3;
        m_input->setOptions(options);
        m_pane->setCurrentNode(m_input);
    } else {
        output = addOutput(item == QLatin1String("json") ? 4 : 1);
        OutputOptions options = output->options();
        options.jsonTypes = options.excelFormatting = OutputOptions::TypesManual;
        output->setOptions(options);
        m_pane->setCurrentNode(output);
    }
    m_pane->show();
    QString title;
    setOptionDialogRunner([&](QDialog *dialog) {
        title = dialog->windowTitle();
        if (auto *widths = qobject_cast<FixedWidthsDialog *>(dialog)) {
            widths->toggleBoundary(4);
        } else if (auto *schema = qobject_cast<SchemaDialog *>(dialog)) {
            schema->fillFromCurrentColumns();
            schema->extraCombo()->setCurrentIndex(1);
        } else if (auto *choices = qobject_cast<ColumnChoiceDialog *>(dialog)) {
            // One combo per upstream column.
            if (choices->table()->rowCount() != 3)
                return int(QDialog::Rejected);
            choices->combo(2)->setCurrentIndex(2);
        }
        return int(accept ? QDialog::Accepted : QDialog::Rejected);
    });
    QPushButton *open = button(buttonText);
    QVERIFY2(open, qPrintable(buttonText));
    QVERIFY(open->isVisible() && open->isEnabled());
    const int before = m_undoStack->count();
    QTest::mouseClick(open, Qt::LeftButton);
    QVERIFY(!title.isEmpty());
    if (step.isEmpty()) {
        QCOMPARE(m_undoStack->count(), before);
        return;
    }
    QCOMPARE(m_undoStack->count(), before + 1);
    QCOMPARE(m_undoStack->text(before), step);
    if (item == QLatin1String("input")) {
        if (buttonText == QLatin1String("&Schema...")) {
            QCOMPARE(title, QStringLiteral("Schema"));
            const InputSchemaSettings schema = InputDocument::schemaSettings(*m_input);
            QCOMPARE(schema.columnNames, QStringList({"a", "b", "c"}));
            QCOMPARE(schema.missingValues, QStringList({"", "", ""}));
            QCOMPARE(schema.extraColumns, 1);
        } else {
            QCOMPARE(title, QStringLiteral("Column Widths"));
            QCOMPARE(m_input->options().columnWidths, QList<int>({4}));
            QCOMPARE(m_input->options().fixedWidthColumns, 0);
        }
        m_undoStack->undo();
        QCOMPARE(input()->options().columnWidths, QList<int>());
        QCOMPARE(InputDocument::schemaSettings(*input()).columnNames, QStringList());
    } else {
        const OutputOptions options = output->options();
        QCOMPARE(item == QLatin1String("json") ? options.jsonManualColumnTypes : options.excelManualColumnFormats,
            QList<int>({0, 0, 2}));
        const int id = output->id();
        m_undoStack->undo();
        const auto *restored = qobject_cast<OutputNode *>(m_scene->node(id));
        QVERIFY(restored);
        QCOMPARE(restored->options().jsonManualColumnTypes, QList<int>());
        QCOMPARE(restored->options().excelManualColumnFormats, QList<int>());
    }
}

void TestItemPanes::fixedWidthsDialog_data()
{
    QTest::addColumn<QList<int>>("start");
    QTest::addColumn<QList<int>>("clicks"); // character positions toggled
    QTest::addColumn<QString>("typed"); // then typed over the widths, when not empty
    QTest::addColumn<QString>("widths");
    QTest::newRow("none, one click") << QList<int>() << QList<int>({5}) << QString() << "5";
    QTest::newRow("clicks in any order") << QList<int>() << QList<int>({9, 3, 6}) << QString() << "3, 3, 3";
    QTest::newRow("a second click removes") << QList<int>({3, 3}) << QList<int>({3}) << QString() << "6";
    QTest::newRow("click before the first character does nothing") << QList<int>({4}) << QList<int>({0})
                                                                    << QString() << "4";
    QTest::newRow("typed widths, bad parts left out") << QList<int>() << QList<int>() << "2; x, 0 7" << "2, 7";
}

void TestItemPanes::fixedWidthsDialog()
{
    QFETCH(QList<int>, start);
    QFETCH(QList<int>, clicks);
    QFETCH(QString, typed);
    QFETCH(QString, widths);
    FixedWidthsDialog dialog({QStringLiteral("abc def ghi"), QStringLiteral("123 456 789")}, start);
    for (int position : clicks)
        dialog.toggleBoundary(position);
    if (!typed.isEmpty()) {
        dialog.widthsEdit()->clear();
        QTest::keyClicks(dialog.widthsEdit(), typed);
        QCOMPARE(dialog.widths(), FixedWidthsDialog::parseWidths(widths));
        return;
    }
    QCOMPARE(dialog.widthsEdit()->text(), widths);
    QCOMPARE(FixedWidthsDialog::widthsText(dialog.widths()), widths);
}

void TestItemPanes::defaultsRoundTrip_data()
{
    QTest::addColumn<QString>("item");
    QTest::addColumn<QString>("forget"); // the answer to forgetting the saved defaults
    QTest::newRow("input, forget") << "input" << "Forget";
    QTest::newRow("input, keep") << "input" << "Keep";
    QTest::newRow("output, forget") << "output" << "Forget";
    QTest::newRow("output, keep") << "output" << "Keep";
    QTest::newRow("chart, forget") << "chart" << "Forget";
    QTest::newRow("chart, keep") << "chart" << "Keep";
}

void TestItemPanes::defaultsRoundTrip()
{
    QFETCH(QString, item);
    QFETCH(QString, forget);
    // Each item type: a getter and setter of one option, its group, and a saved and a factory value.
    Node *node = m_input;
    std::function<int()> get;
    std::function<void(int)> set;
    QString group;
    QString key = QStringLiteral("quoting");
    if (item == QLatin1String("input")) {
        group = QStringLiteral("defaults/inputs");
        get = [this] { return input()->options().quoting; };
        set = [this](int value) {
            InputOptions o = input()->options();
            o.quoting = value;
            input()->setOptions(o);
        };
    } else if (item == QLatin1String("output")) {
        node = addOutput(0);
        group = QStringLiteral("defaults/outputs");
        const int id = node->id();
        get = [this, id] { return qobject_cast<OutputNode *>(m_scene->node(id))->options().quoting; };
        set = [this, id](int value) {
            auto *output = qobject_cast<OutputNode *>(m_scene->node(id));
            OutputOptions o = output->options();
            o.quoting = value;
            output->setOptions(o);
        };
    } else {
        node = new ChartNode;
        m_scene->addNode(node);
        group = QStringLiteral("defaults/charts");
        key = QStringLiteral("chart_opacity");
        const int id = node->id();
        get = [this, id] { return qobject_cast<ChartNode *>(m_scene->node(id))->options().opacity; };
        set = [this, id](int value) {
            auto *chart = qobject_cast<ChartNode *>(m_scene->node(id));
            ChartOptions o = chart->options();
            o.opacity = value;
            chart->setOptions(o);
        };
    }
    const int factory = get();
    const int id = node->id();
    set(2);
    m_pane->setCurrentNode(node);
    ItemWidget *widget = m_pane->itemWidget();
    QVERIFY(widget->canSaveDefaults());
    const int steps = m_undoStack->count();
    widget->saveDefaults();
    QCOMPARE(m_undoStack->count(), steps); // saving is no edit
    QVERIFY(m_settings->childKeys(group).contains(key));

    set(1);
    m_pane->setCurrentNode(m_scene->node(id));
    m_pane->itemWidget()->restoreDefaults(false);
    QCOMPARE(get(), 2);
    QCOMPARE(m_undoStack->count(), steps + 1);
    QCOMPARE(m_undoStack->text(steps), QStringLiteral("restore defaults"));

    m_pane->setCurrentNode(m_scene->node(id));
    m_prompts.answers = QStringList({forget});
    m_pane->itemWidget()->restoreDefaults(true);
    QCOMPARE(get(), factory);
    QCOMPARE(m_prompts.asked.size(), 1);
    QVERIFY(m_prompts.asked.first().startsWith(QLatin1String("Also forget the saved defaults for ")));
    const bool forgotten = forget == QLatin1String("Forget");
    QCOMPARE(m_settings->childKeys(group).contains(key), !forgotten);

    // Restoring again gives the saved value, or the factory one once forgotten.
    m_pane->setCurrentNode(m_scene->node(id));
    const int before = m_undoStack->count();
    m_pane->itemWidget()->restoreDefaults(false);
    QCOMPARE(get(), forgotten ? factory : 2);
    // Restoring what is already there is no step.
    QCOMPARE(m_undoStack->count(), before + (forgotten ? 0 : 1));
    m_undoStack->undo();
    QCOMPARE(get(), forgotten ? 2 : factory);
}

void TestItemPanes::messages_data()
{
    QTest::addColumn<int>("warnings");
    QTest::addColumn<bool>("error");
    QTest::addColumn<int>("shown"); // warnings shown before the link is followed
    QTest::addColumn<bool>("link");
    QTest::newRow("none") << 0 << false << 0 << false;
    QTest::newRow("three") << 3 << false << 3 << false;
    QTest::newRow("four") << 4 << false << 3 << true;
    QTest::newRow("nine") << 9 << false << 3 << true;
    QTest::newRow("nine in error") << 9 << true << 9 << false;
}

void TestItemPanes::messages()
{
    QFETCH(int, warnings);
    QFETCH(bool, error);
    QFETCH(int, shown);
    QFETCH(bool, link);
    for (int i = 1; i <= warnings; ++i)
        m_input->addWarning(QStringLiteral("Warning number %1.").arg(i));
    m_input->addInformation(QStringLiteral("Read file 'x'"));
    m_input->setStatus(error ? Node::Error : Node::UpToDate, false);
    m_pane->setCurrentNode(m_input);
    m_pane->show();
    QLabel *messages = m_pane->itemWidget()->messagesLabel();
    QCOMPARE(messages->accessibleName(), QStringLiteral("Item messages"));
    QVERIFY(messages->textInteractionFlags() & Qt::TextSelectableByMouse);
    const auto count = [messages] { return messages->text().count(QStringLiteral("Warning number")); };
    QCOMPARE(count(), shown);
    const QString linkText = QStringLiteral("Show all %1 warnings").arg(warnings);
    QCOMPARE(messages->text().contains(linkText), link);
    if (link) {
        emit messages->linkActivated(QStringLiteral("#warnings"));
        QCOMPARE(count(), warnings);
        QVERIFY(!messages->text().contains(linkText));
    }
    // The information lines wait behind a closed disclosure.
    QToolButton *information = nullptr;
    for (QToolButton *button : m_pane->itemWidget()->findChildren<QToolButton *>()) {
        if (button->text() == QLatin1String("Information (1)"))
            information = button;
    }
    QVERIFY(information);
    QVERIFY(!information->isChecked());
    QTest::mouseClick(information, Qt::LeftButton);
    QVERIFY(information->isChecked());
    // The status is in words as well as colour.
    QCOMPARE(m_pane->itemWidget()->statusLabel()->text(), Node::statusName(m_input->status()));
}

void TestItemPanes::outputFileTypeExtension_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<int>("type");
    QTest::addColumn<QString>("answer");
    QTest::addColumn<QString>("asked");
    QTest::addColumn<QString>("after");
    QTest::newRow("yes") << "out.csv" << 4 << "Yes" << "Change file extension to 'json'?" << "out.json";
    QTest::newRow("no") << "out.csv" << 4 << "No" << "Change file extension to 'json'?" << "out.csv";
    QTest::newRow("tsv stays for delimited") << "out.tsv" << 0 << "" << "" << "out.tsv";
    QTest::newRow("unknown extension") << "out.dat" << 5 << "" << "" << "out.dat";
    QTest::newRow("no extension") << "out" << 1 << "" << "" << "out";
    QTest::newRow("xlsx to xls") << "book.xlsx" << 2 << "Yes" << "Change file extension to 'xls'?" << "book.xls";
}

void TestItemPanes::outputFileTypeExtension()
{
    QFETCH(QString, path);
    QFETCH(int, type);
    QFETCH(QString, answer);
    QFETCH(QString, asked);
    QFETCH(QString, after);
    OutputNode *output = addOutput(FileFormat::forExtension(QFileInfo(path).suffix()) % 11);
    OutputOptions options = output->options();
    options.path = m_dir->filePath(path);
    if (options.fileType == type)
        options.fileType = type == 0 ? 1 : 0;
    output->setOptions(options);
    m_pane->setCurrentNode(output);
    auto *widget = qobject_cast<OutputItemWidget *>(m_pane->itemWidget());
    if (!answer.isEmpty())
        m_prompts.answers << answer;
    const int steps = m_undoStack->count();
    QComboBox *combo = widget->fileTypeCombo();
    combo->setCurrentIndex(combo->findData(type));
    emit combo->activated(combo->currentIndex());
    QCOMPARE(m_prompts.asked, asked.isEmpty() ? QStringList() : QStringList({asked}));
    QCOMPARE(output->options().fileType, type);
    QCOMPARE(QFileInfo(output->options().path).fileName(), after);
    QCOMPARE(m_undoStack->count(), steps + 1);
    QCOMPARE(m_undoStack->text(steps), QStringLiteral("'File type' change"));
}

void TestItemPanes::multiFileConfirmation_data()
{
    QTest::addColumn<QString>("answer");
    QTest::addColumn<int>("written");
    QTest::newRow("OK") << "OK" << 2;
    QTest::newRow("Cancel") << "Cancel" << 0;
}

void TestItemPanes::multiFileConfirmation()
{
    QFETCH(QString, answer);
    QFETCH(int, written);
    Dataset dataset = testutil::toDataset(QStringLiteral("file,v\none.csv,1\ntwo.csv,2"), true);
    dataset.assignColumnIds(m_input->id());
    m_input->setDataset(dataset);
    m_scene->setProperty("documentPath", m_dir->filePath(QStringLiteral("flow.tflow")));
    OutputNode *output = addOutput(0);
    OutputOptions options = output->options();
    options.outputTo = OutputOptions::MultipleFiles;
    options.filesColumn = 1;
    output->setOptions(options);
    m_prompts.answers << answer;
    output->setStatus(Node::NeedsUpdating, false);
    output->process(false, false);
    QCOMPARE(m_prompts.asked.size(), 1);
    QVERIFY(m_prompts.asked.first().startsWith(QLatin1String("2 new file(s) to be created:\n")));
    QCOMPARE(output->writtenFiles().size(), written);
    QCOMPARE(output->warnings().contains(QStringLiteral("Output cancelled by user")), written == 0);
}

void TestItemPanes::noteSteps_data()
{
    QTest::addColumn<QString>("what");
    QTest::newRow("text") << "text";
    QTest::newRow("swatch") << "swatch";
    QTest::newRow("pointer") << "pointer";
}

void TestItemPanes::noteSteps()
{
    QFETCH(QString, what);
    auto *note = new NoteNode;
    m_scene->addNode(note);
    const int id = note->id();
    m_pane->setCurrentNode(note);
    m_pane->show();
    auto *widget = qobject_cast<NoteItemWidget *>(m_pane->itemWidget());
    QVERIFY(widget);
    QVERIFY(m_pane->dataTabs()->isHidden());
    const QColor colourBefore = note->color();
    if (what == QLatin1String("text")) {
        widget->textEdit()->setFocus();
        QTest::keyClicks(widget->textEdit(), QStringLiteral("Check totals"));
        QCOMPARE(note->text(), QStringLiteral("Check totals"));
    } else if (what == QLatin1String("swatch")) {
        QToolButton *swatch = nullptr;
        for (QToolButton *button : widget->findChildren<QToolButton *>()) {
            if (button->accessibleName() == QLatin1String("Green"))
                swatch = button;
        }
        QVERIFY(swatch);
        QTest::mouseClick(swatch, Qt::LeftButton);
        QCOMPARE(note->color(), NoteItemWidget::colours().at(1));
        QVERIFY(swatch->isChecked());
    } else {
        QComboBox *pointer = widget->pointerCombo();
        pointer->setCurrentIndex(3);
        emit pointer->activated(3);
        QCOMPARE(note->arrow(), 3);
    }
    QCOMPARE(m_undoStack->count(), 1); // typing is one step
    QCOMPARE(m_undoStack->text(0), QStringLiteral("note change"));
    m_undoStack->undo();
    const auto *restored = qobject_cast<NoteNode *>(m_scene->node(id));
    QCOMPARE(restored->text(), QString());
    QCOMPARE(restored->color(), colourBefore);
    QCOMPARE(restored->arrow(), 0);
}

void TestItemPanes::flowSummary()
{
    m_scene->addNode(new NoteNode);
    addOutput(0);
    m_scene->setProperty("documentId", QStringLiteral("flow-7"));
    m_pane->setCurrentNode(nullptr);
    m_pane->show();
    auto *widget = qobject_cast<FlowItemWidget *>(m_pane->itemWidget());
    QVERIFY(widget);
    QCOMPARE(widget->summaryText(), QStringLiteral("1 inputs, 0 transforms, 1 outputs, 0 charts, 1 notes"));
    bool idShown = false;
    for (QLabel *label : widget->findChildren<QLabel *>())
        idShown = idShown || (label->text() == QLatin1String("flow-7") && label->isVisible());
    QVERIFY(idShown);
    widget->notesEdit()->setFocus();
    QTest::keyClicks(widget->notesEdit(), QStringLiteral("Monthly"));
    QCOMPARE(FlowItemWidget::notes(m_scene.get()), QStringLiteral("Monthly"));
    QCOMPARE(m_undoStack->count(), 1);
    QCOMPARE(m_undoStack->text(0), QStringLiteral("flow notes change"));
    m_undoStack->undo();
    QCOMPARE(FlowItemWidget::notes(m_scene.get()), QString());
}

Node *TestItemPanes::itemNamed(const QString &item)
{
    Node *node = nullptr;
    if (item == QLatin1String("input"))
        return m_input;
    if (item == QLatin1String("output"))
        return addOutput(0);
    if (item == QLatin1String("chart"))
        node = new ChartNode;
    else if (item == QLatin1String("note"))
        node = new NoteNode;
    if (node)
        m_scene->addNode(node);
    return node;
}

void TestItemPanes::helpButton_data()
{
    QTest::addColumn<QString>("item");
    QTest::addColumn<QString>("tip");
    QTest::addColumn<QString>("topic");
    QTest::newRow("input") << "input" << "Help on Input" << "Input";
    QTest::newRow("output") << "output" << "Help on Output" << "Output";
    QTest::newRow("chart") << "chart" << "Help on Chart" << "Chart";
    QTest::newRow("note") << "note" << "Help on Note" << "Note";
    QTest::newRow("flow") << "flow" << "Help on Flow" << "Flow";
}

void TestItemPanes::helpButton()
{
    QFETCH(QString, item);
    QFETCH(QString, tip);
    QFETCH(QString, topic);
    Node *node = itemNamed(item);
    m_pane->setCurrentNode(node);
    m_pane->show();
    QToolButton *help = nullptr;
    for (QToolButton *button : m_pane->itemWidget()->findChildren<QToolButton *>()) {
        if (button->text() == QLatin1String("?"))
            help = button;
    }
    QVERIFY(help);
    QCOMPARE(help->toolTip(), tip);
    QSignalSpy requested(m_pane.get(), &ItemPane::helpRequested);
    QTest::mouseClick(help, Qt::LeftButton);
    QCOMPARE(requested.size(), 1);
    QCOMPARE(requested.first().first().toString(), topic);
    QVERIFY(HelpWindow::existingInstance());
    QVERIFY(HelpWindow::existingInstance()->isVisible());
    HelpWindow::existingInstance()->close();
}

void TestItemPanes::rename_data()
{
    QTest::addColumn<QString>("item");
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("shown"); // the name once typed
    QTest::newRow("input") << "input" << "  Orders  " << "Orders";
    QTest::newRow("output") << "output" << "Report" << "Report";
    QTest::newRow("chart") << "chart" << "Sales chart" << "Sales chart";
    QTest::newRow("empty name goes back to the file name") << "input" << "" << "";
}

void TestItemPanes::rename()
{
    QFETCH(QString, item);
    QFETCH(QString, typed);
    QFETCH(QString, shown);
    Node *node = itemNamed(item);
    const QString derived = node->name();
    if (typed.isEmpty())
        node->setName(QStringLiteral("Given"));
    const int id = node->id();
    m_pane->setCurrentNode(node);
    m_pane->show();
    QLineEdit *edit = m_pane->itemWidget()->nameEdit();
    QVERIFY(edit->isVisible());
    const int steps = m_undoStack->count();
    edit->setText(typed);
    emit edit->editingFinished();
    QCOMPARE(m_undoStack->count(), steps + 1);
    QCOMPARE(m_undoStack->text(steps), QStringLiteral("rename"));
    QCOMPARE(m_scene->node(id)->name(), shown.isEmpty() ? derived : shown);
    m_undoStack->undo();
    QCOMPARE(m_scene->node(id)->name(), typed.isEmpty() ? QStringLiteral("Given") : derived);
}

void TestItemPanes::themeColours_data()
{
    QTest::addColumn<bool>("dark");
    QTest::addColumn<int>("status");
    QTest::newRow("light, up to date") << false << int(Node::UpToDate);
    QTest::newRow("dark, up to date") << true << int(Node::UpToDate);
    QTest::newRow("light, error") << false << int(Node::Error);
    QTest::newRow("dark, error") << true << int(Node::Error);
    QTest::newRow("dark, needs updating") << true << int(Node::NeedsUpdating);
}

void TestItemPanes::themeColours()
{
    QFETCH(bool, dark);
    QFETCH(int, status);
    m_input->setStatus(status, false);
    m_pane->setCurrentNode(m_input);
    m_pane->show();
    // A theme change after the pane is shown: the status follows the new window colour.
    QPalette palette = m_pane->palette();
    palette.setColor(QPalette::Window, dark ? QColor(0x2B, 0x2B, 0x2B) : QColor(0xEF, 0xEF, 0xEF));
    m_pane->setPalette(palette);
    QLabel *statusLabel = m_pane->itemWidget()->statusLabel();
    QCOMPARE(statusLabel->palette().color(QPalette::WindowText), ItemWidget::statusColour(status, dark));
    QVERIFY(ItemWidget::statusColour(status, true) != ItemWidget::statusColour(status, false));
}

void TestItemPanes::tabOrder_data()
{
    QTest::addColumn<QString>("item");
    QTest::addColumn<int>("format");
    QTest::newRow("delimited input") << "input" << 0;
    QTest::newRow("fixed width input") << "input" << 3;
    QTest::newRow("csv output") << "output" << 0;
    QTest::newRow("xml output") << "output" << 5;
    QTest::newRow("chart") << "chart" << 0;
}

void TestItemPanes::tabOrder()
{
    QFETCH(QString, item);
    QFETCH(int, format);
    Node *node = m_input;
    if (item == QLatin1String("input")) {
        InputOptions options = m_input->options();
        options.fileType = format;
        m_input->setOptions(options);
    } else if (item == QLatin1String("output")) {
        node = addOutput(format);
    } else {
        node = new ChartNode;
        m_scene->addNode(node);
        m_scene->connectNodes(m_input, node);
    }
    m_pane->setCurrentNode(node);
    m_pane->resize(600, 3000);
    m_pane->show();
    QWidget *form = m_pane->itemWidget()->formWidget();
    QVERIFY(QTest::qWaitForWindowExposed(m_pane.get()));
    // Tab goes through the shown controls from the top down, and left to right in a row.
    QWidget *first = nullptr;
    for (QWidget *w : form->findChildren<QWidget *>()) {
        if (w->isVisible() && (w->focusPolicy() & Qt::TabFocus) && w->isEnabled()) {
            first = w;
            break;
        }
    }
    QVERIFY(first);
    QPoint previous(-1, -1);
    int visited = 0;
    for (QWidget *w = form->nextInFocusChain(); w != form && visited < 500; w = w->nextInFocusChain(), ++visited) {
        // Containers that hand their focus on are passed over for the widget they hand it to.
        if (!form->isAncestorOf(w) || !w->isVisible() || !(w->focusPolicy() & Qt::TabFocus) || !w->isEnabled()
            || w->focusProxy())
            continue;
        const QPoint at = w->mapTo(form, QPoint(0, qMin(w->height() / 2, 12)));
        const bool sameRow = qAbs(at.y() - previous.y()) < 8;
        QVERIFY2(sameRow ? at.x() > previous.x() : at.y() > previous.y(),
            qPrintable(QStringLiteral("%1 '%2' at %3,%4 after %5,%6")
                           .arg(QString::fromLatin1(w->metaObject()->className()), w->accessibleName())
                           .arg(at.x())
                           .arg(at.y())
                           .arg(previous.x())
                           .arg(previous.y())));
        previous = at;
    }
}

int main(int argc, char **argv)
{
    QStandardPaths::setTestModeEnabled(true);
    Application app(argc, argv, false);
    TestItemPanes test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_itempanes.moc"
