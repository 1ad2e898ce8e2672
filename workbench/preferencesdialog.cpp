#include "workbench/preferencesdialog.h"

#include "core/settings.h"
#include "core/values.h"
#include "workbench/dialogutil.h"
#include "workbench/prompts.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QDir>
#include <QDoubleSpinBox>
#include <QFontDialog>
#include <QFormLayout>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QLocale>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <QStackedWidget>
#include <QVBoxLayout>

namespace {

enum Page { General, Performance, Dates, Appearance, InputExtensions, OutputExtensions, PageCount };

QStringList listItems(const QListWidget *list)
{
    QStringList items;
    for (int i = 0; i < list->count(); ++i)
        items << list->item(i)->text();
    return items;
}

void setListItems(QListWidget *list, const QStringList &items)
{
    list->clear();
    for (const QString &text : items) {
        auto *item = new QListWidgetItem(text, list);
        item->setFlags(item->flags() | Qt::ItemIsEditable);
    }
}

// Add, Remove and, when ordered, Up and Down beside an editable list.
QWidget *editableList(QListWidget *list, bool ordered, QWidget *parent)
{
    auto *box = new QWidget(parent);
    auto *layout = new QHBoxLayout(box);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(list, 1);
    auto *buttons = new QVBoxLayout;
    auto *add = new QPushButton(PreferencesDialog::tr("A&dd"), box);
    auto *remove = new QPushButton(PreferencesDialog::tr("Re&move"), box);
    add->setObjectName(list->objectName() + QStringLiteral("Add"));
    remove->setObjectName(list->objectName() + QStringLiteral("Remove"));
    buttons->addWidget(add);
    buttons->addWidget(remove);
    QObject::connect(add, &QPushButton::clicked, list, [list] {
        auto *item = new QListWidgetItem(QString(), list);
        item->setFlags(item->flags() | Qt::ItemIsEditable);
        list->setCurrentItem(item);
        list->editItem(item);
    });
    QObject::connect(remove, &QPushButton::clicked, list, [list] { delete list->currentItem(); });
    if (ordered) {
        auto *up = new QPushButton(PreferencesDialog::tr("&Up"), box);
        auto *down = new QPushButton(PreferencesDialog::tr("Do&wn"), box);
        buttons->addWidget(up);
        buttons->addWidget(down);
        const auto move = [list](int by) {
            const int row = list->currentRow();
            if (row < 0 || row + by < 0 || row + by >= list->count())
                return;
            QListWidgetItem *item = list->takeItem(row);
            list->insertItem(row + by, item);
            list->setCurrentItem(item);
        };
        QObject::connect(up, &QPushButton::clicked, list, [move] { move(-1); });
        QObject::connect(down, &QPushButton::clicked, list, [move] { move(1); });
    }
    buttons->addStretch(1);
    layout->addLayout(buttons);
    return box;
}

QLocale localeOf(const QString &name)
{
    return name.isEmpty() ? QLocale::system() : QLocale(name);
}

} // namespace

PreferencesDialog::PreferencesDialog(Settings *settings, QWidget *parent)
    : QDialog(parent)
    , m_settings(settings)
{
    setObjectName(QStringLiteral("PreferencesDialog"));
    setWindowTitle(tr("Preferences"));
    setModal(true);

    auto *layout = new QVBoxLayout(this);
    auto *middle = new QHBoxLayout;
    m_pageList = new QListWidget(this);
    m_pageList->setObjectName(QStringLiteral("pageList"));
    m_pageList->setAccessibleName(tr("Pages"));
    m_pages = new QStackedWidget(this);
    m_pages->addWidget(generalPage());
    m_pages->addWidget(performancePage());
    m_pages->addWidget(datesPage());
    m_pages->addWidget(appearancePage());
    m_pages->addWidget(extensionsPage(true));
    m_pages->addWidget(extensionsPage(false));
    m_pageList->addItems({tr("General"), tr("Performance"), tr("Dates"), tr("Appearance"), tr("Input Extensions"),
        tr("Output Extensions")});
    connect(m_pageList, &QListWidget::currentRowChanged, m_pages, &QStackedWidget::setCurrentIndex);
    m_pageList->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_pageList->setFixedWidth(m_pageList->sizeHintForColumn(0) + 2 * m_pageList->frameWidth() + 16);
    middle->addWidget(m_pageList);
    middle->addWidget(m_pages, 1);
    layout->addLayout(middle, 1);

    QString where = tr("(not available)");
    if (settings) {
        where = QDir::toNativeSeparators(settings->fileName());
        if (settings->isPortable())
            where += tr(" (portable)");
    }
    auto *location = new QLabel(tr("Settings are stored in: %1").arg(where), this);
    location->setObjectName(QStringLiteral("locationLabel"));
    location->setTextInteractionFlags(Qt::TextSelectableByMouse);
    location->setWordWrap(true);
    layout->addWidget(location);

    auto *buttons = new QDialogButtonBox(
        QDialogButtonBox::Ok | QDialogButtonBox::Cancel | QDialogButtonBox::Apply | QDialogButtonBox::RestoreDefaults,
        this);
    buttons->button(QDialogButtonBox::Ok)->setObjectName(QStringLiteral("okButton"));
    buttons->button(QDialogButtonBox::Cancel)->setObjectName(QStringLiteral("cancelButton"));
    buttons->button(QDialogButtonBox::Apply)->setObjectName(QStringLiteral("applyButton"));
    buttons->button(QDialogButtonBox::Apply)->setText(tr("&Apply"));
    buttons->button(QDialogButtonBox::RestoreDefaults)->setObjectName(QStringLiteral("restoreDefaultsButton"));
    buttons->button(QDialogButtonBox::RestoreDefaults)->setText(tr("&Restore Defaults"));
    buttons->button(QDialogButtonBox::Ok)->setDefault(true);
    layout->addWidget(buttons);
    connect(buttons, &QDialogButtonBox::accepted, this, [this] {
        apply();
        accept();
    });
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(buttons->button(QDialogButtonBox::Apply), &QPushButton::clicked, this, &PreferencesDialog::apply);
    connect(buttons->button(QDialogButtonBox::RestoreDefaults), &QPushButton::clicked, this,
        &PreferencesDialog::restoreDefaults);

    QVariantMap current;
    for (int page = 0; page < PageCount; ++page) {
        for (const QString &key : pageKeys(page))
            current.insert(key, stored(key));
    }
    for (int page = 0; page < PageCount; ++page)
        load(current, page);
    m_optimizeNote->hide();
    m_pageList->setCurrentRow(0);
    DialogGeometry::restore(this, QSize(720, 520));
}

QStringList PreferencesDialog::pageTitles() const
{
    QStringList titles;
    for (int i = 0; i < m_pageList->count(); ++i)
        titles << m_pageList->item(i)->text();
    return titles;
}

QStringList PreferencesDialog::pageKeys(int page)
{
    switch (page) {
    case General:
        return {"startup_action", "startup_document", "recent_documents_max", "user_name", "beep_when_finished",
            "auto_recovery_minutes", "undo_limit", "check_for_updates", "update_base_url"};
    case Performance:
        return {"optimize_for", "max_memory_usage", "auto_run_delay_ms"};
    case Dates:
        return {"locale", "date_formats"};
    case Appearance:
        return {"theme", "ui_font", "table_font", "table_max_cell_chars", "show_advanced_transforms"};
    case InputExtensions:
        return {"input_blocked_extensions"};
    case OutputExtensions:
        return {"output_blocked_extensions"};
    default:
        return {};
    }
}

void PreferencesDialog::setCurrentPage(int page)
{
    m_pageList->setCurrentRow(page);
}

int PreferencesDialog::currentPage() const
{
    return m_pages->currentIndex();
}

QVariant PreferencesDialog::stored(const QString &key) const
{
    if (!m_settings)
        return QVariant();
    if (key == QLatin1String("input_blocked_extensions"))
        return m_settings->blockedExtensions(true);
    if (key == QLatin1String("output_blocked_extensions"))
        return m_settings->blockedExtensions(false);
    return m_settings->value(key);
}

QStringList PreferencesDialog::cleanExtensions(const QStringList &extensions)
{
    QStringList clean;
    for (const QString &extension : extensions) {
        QString e = extension.trimmed().toLower();
        while (e.startsWith(QLatin1Char('.')))
            e.remove(0, 1);
        e = e.trimmed();
        if (!e.isEmpty() && !clean.contains(e))
            clean << e;
    }
    return clean;
}

// ----- pages

QWidget *PreferencesDialog::generalPage()
{
    auto *page = new QWidget(this);
    auto *form = new QFormLayout(page);
    form->setFieldGrowthPolicy(QFormLayout::ExpandingFieldsGrow);
    m_startupRecent = new QRadioButton(tr("Show recent &documents"), page);
    m_startupRecent->setObjectName(QStringLiteral("startupRecent"));
    m_startupEmpty = new QRadioButton(tr("Start with an &empty flow"), page);
    m_startupEmpty->setObjectName(QStringLiteral("startupEmpty"));
    m_startupDocument = new QRadioButton(tr("Open t&his flow:"), page);
    m_startupDocument->setObjectName(QStringLiteral("startupDocument"));
    auto *group = new QButtonGroup(page);
    group->addButton(m_startupRecent, 0);
    group->addButton(m_startupEmpty, 1);
    group->addButton(m_startupDocument, 2);
    m_startupPath = new QLineEdit(page);
    m_startupPath->setObjectName(QStringLiteral("startupPath"));
    m_startupPath->setAccessibleName(tr("Flow opened at start-up"));
    auto *browse = new QPushButton(tr("&Browse..."), page);
    connect(browse, &QPushButton::clicked, this, [this] {
        const QString path = FileDialogs::instance()->openFile(this, tr("Open at Start-up"),
            QFileInfo(m_startupPath->text()).absolutePath(), tr("Tabrelle flows (*.tflow);;All files (*)"));
        if (!path.isEmpty()) {
            m_startupPath->setText(QDir::toNativeSeparators(path));
            m_startupDocument->setChecked(true);
        }
    });
    auto *startup = new QVBoxLayout;
    startup->addWidget(m_startupRecent);
    startup->addWidget(m_startupEmpty);
    auto *documentRow = new QHBoxLayout;
    documentRow->addWidget(m_startupDocument);
    documentRow->addWidget(m_startupPath, 1);
    documentRow->addWidget(browse);
    startup->addLayout(documentRow);
    form->addRow(tr("At start-up:"), startup);
    const auto pathEnabled = [this, browse] {
        m_startupPath->setEnabled(m_startupDocument->isChecked());
        browse->setEnabled(m_startupDocument->isChecked());
    };
    connect(m_startupDocument, &QRadioButton::toggled, this, pathEnabled);

    m_recentMax = new QSpinBox(page);
    m_recentMax->setObjectName(QStringLiteral("recentMax"));
    m_recentMax->setRange(0, 30);
    form->addRow(tr("Recent documents to &keep:"), m_recentMax);
    m_userName = new QLineEdit(page);
    m_userName->setObjectName(QStringLiteral("userName"));
    form->addRow(tr("Your &name in saved flows:"), m_userName);
    m_beep = new QCheckBox(tr("Bee&p when a run finishes"), page);
    m_beep->setObjectName(QStringLiteral("beep"));
    form->addRow(QString(), m_beep);
    m_recoveryMinutes = new QSpinBox(page);
    m_recoveryMinutes->setObjectName(QStringLiteral("recoveryMinutes"));
    m_recoveryMinutes->setRange(0, 60);
    m_recoveryMinutes->setSuffix(tr(" minute(s)"));
    m_recoveryMinutes->setSpecialValueText(tr("Never"));
    form->addRow(tr("Save recovery information e&very:"), m_recoveryMinutes);
    m_undoLimit = new QSpinBox(page);
    m_undoLimit->setObjectName(QStringLiteral("undoLimit"));
    m_undoLimit->setRange(10, 10000);
    form->addRow(tr("&Undo steps to keep:"), m_undoLimit);
    m_checkUpdates = new QCheckBox(tr("Check for updates at start-up (at most once a da&y)"), page);
    m_checkUpdates->setObjectName(QStringLiteral("checkUpdates"));
    form->addRow(QString(), m_checkUpdates);
    m_updateUrl = new QLineEdit(page);
    m_updateUrl->setObjectName(QStringLiteral("updateUrl"));
    form->addRow(tr("Update &server:"), m_updateUrl);
    return page;
}

QWidget *PreferencesDialog::performancePage()
{
    auto *page = new QWidget(this);
    auto *form = new QFormLayout(page);
    form->setFieldGrowthPolicy(QFormLayout::ExpandingFieldsGrow);
    m_optimizeFor = new QComboBox(page);
    m_optimizeFor->setObjectName(QStringLiteral("optimizeFor"));
    m_optimizeFor->addItems({tr("Minimum memory use (recommended)"), tr("Maximum speed")});
    m_optimizeFor->setToolTip(tr("Minimum memory use stores each distinct value of a column once (memory "
                                 "compression).\nMaximum speed skips that step.\nTakes effect when Tabrelle is next "
                                 "started."));
    m_optimizeNote = new QLabel(tr("Takes effect when Tabrelle is next started."), page);
    m_optimizeNote->setObjectName(QStringLiteral("optimizeNote"));
    auto *optimize = new QHBoxLayout;
    optimize->addWidget(m_optimizeFor);
    optimize->addWidget(m_optimizeNote, 1);
    form->addRow(tr("&Optimize for:"), optimize);
    connect(m_optimizeFor, QOverload<int>::of(&QComboBox::currentIndexChanged), this, [this](int index) {
        m_optimizeNote->setVisible(m_settings && index != m_settings->intValue(QStringLiteral("optimize_for")));
    });
    m_maxMemory = new QDoubleSpinBox(page);
    m_maxMemory->setObjectName(QStringLiteral("maxMemory"));
    m_maxMemory->setDecimals(1);
    m_maxMemory->setSingleStep(0.5);
    const double physical = Settings::physicalMemoryGb();
    m_maxMemory->setRange(0.5, physical > 0 ? physical : 1024.0);
    m_maxMemory->setSuffix(tr(" GB"));
    form->addRow(tr("Maximum &memory use:"), m_maxMemory);
    m_autoRunDelay = new QSpinBox(page);
    m_autoRunDelay->setObjectName(QStringLiteral("autoRunDelay"));
    m_autoRunDelay->setRange(0, 10000);
    m_autoRunDelay->setSingleStep(100);
    m_autoRunDelay->setSuffix(tr(" ms"));
    form->addRow(tr("Auto Run &delay:"), m_autoRunDelay);
    return page;
}

QWidget *PreferencesDialog::datesPage()
{
    auto *page = new QWidget(this);
    auto *form = new QFormLayout(page);
    form->setFieldGrowthPolicy(QFormLayout::ExpandingFieldsGrow);
    m_locale = new QComboBox(page);
    m_locale->setObjectName(QStringLiteral("locale"));
    m_locale->addItem(tr("System (%1)").arg(QLocale::system().bcp47Name()), QString());
    QList<QLocale> locales = QLocale::matchingLocales(QLocale::AnyLanguage, QLocale::AnyScript, QLocale::AnyCountry);
    QStringList seen;
    QList<QPair<QString, QString>> entries;
    for (const QLocale &locale : locales) {
        const QString name = locale.bcp47Name();
        if (locale.language() == QLocale::C || seen.contains(name))
            continue;
        seen << name;
        const QString text = QStringLiteral("%1 - %2 (%3)")
                                 .arg(name, locale.nativeLanguageName(), locale.nativeCountryName());
        entries << qMakePair(text, name);
    }
    std::sort(entries.begin(), entries.end());
    for (const auto &entry : qAsConst(entries))
        m_locale->addItem(entry.first, entry.second);
    form->addRow(tr("&Locale:"), m_locale);
    m_dateFormats = new QListWidget(page);
    m_dateFormats->setObjectName(QStringLiteral("dateFormats"));
    m_dateFormats->setAccessibleName(tr("Date formats"));
    form->addRow(tr("Date &formats:"), editableList(m_dateFormats, true, page));
    m_dateTest = new QLineEdit(page);
    m_dateTest->setObjectName(QStringLiteral("dateTest"));
    m_dateTestResult = new QLabel(page);
    m_dateTestResult->setObjectName(QStringLiteral("dateTestResult"));
    form->addRow(tr("&Test a date:"), m_dateTest);
    form->addRow(QString(), m_dateTestResult);
    connect(m_dateTest, &QLineEdit::textChanged, this, &PreferencesDialog::updateDateTest);
    connect(m_dateFormats->model(), &QAbstractItemModel::dataChanged, this, &PreferencesDialog::updateDateTest);
    connect(m_dateFormats->model(), &QAbstractItemModel::rowsInserted, this, &PreferencesDialog::updateDateTest);
    connect(m_dateFormats->model(), &QAbstractItemModel::rowsRemoved, this, &PreferencesDialog::updateDateTest);
    connect(m_dateFormats->model(), &QAbstractItemModel::rowsMoved, this, &PreferencesDialog::updateDateTest);
    // A new locale brings its own default list, unless the list was changed by hand.
    connect(m_locale, QOverload<int>::of(&QComboBox::currentIndexChanged), this, [this] {
        const QStringList shown = listItems(m_dateFormats);
        for (int i = 0; i < m_locale->count(); ++i) {
            if (shown == defaultDateFormats(localeOf(m_locale->itemData(i).toString()))) {
                setListItems(m_dateFormats, defaultDateFormats(localeOf(m_locale->currentData().toString())));
                break;
            }
        }
        updateDateTest();
    });
    return page;
}

void PreferencesDialog::updateDateTest()
{
    const QString text = m_dateTest->text().trimmed();
    if (text.isEmpty()) {
        m_dateTestResult->clear();
        return;
    }
    for (const QString &format : listItems(m_dateFormats)) {
        if (format.trimmed().isEmpty())
            continue;
        const QDate date = QDate::fromString(text, format.trimmed());
        if (date.isValid()) {
            m_dateTestResult->setText(tr("Reads as %1 with '%2'").arg(date.toString(Qt::ISODate), format.trimmed()));
            return;
        }
    }
    m_dateTestResult->setText(tr("Not a date in any of these formats"));
}

void PreferencesDialog::updateFontButton(QPushButton *button, const QString &font)
{
    if (font.isEmpty()) {
        button->setText(tr("Default"));
        return;
    }
    QFont f;
    f.fromString(font);
    button->setText(QStringLiteral("%1, %2 pt").arg(f.family()).arg(f.pointSize()));
}

QWidget *PreferencesDialog::appearancePage()
{
    auto *page = new QWidget(this);
    auto *form = new QFormLayout(page);
    form->setFieldGrowthPolicy(QFormLayout::ExpandingFieldsGrow);
    m_theme = new QComboBox(page);
    m_theme->setObjectName(QStringLiteral("theme"));
    m_theme->addItems({tr("Follow the desktop"), tr("Light"), tr("Dark")});
    form->addRow(tr("T&heme:"), m_theme);
    const auto fontRow = [this, page, form](const QString &label, QPushButton *&button, QString *value,
                             const QString &name) {
        button = new QPushButton(page);
        button->setObjectName(name);
        auto *reset = new QPushButton(tr("Default"), page);
        reset->setObjectName(name + QStringLiteral("Default"));
        auto *row = new QHBoxLayout;
        row->addWidget(button, 1);
        row->addWidget(reset);
        form->addRow(label, row);
        QPushButton *chooser = button;
        connect(chooser, &QPushButton::clicked, this, [this, chooser, value] {
            QFont initial = font();
            if (!value->isEmpty())
                initial.fromString(*value);
            bool ok = false;
            const QFont chosen = QFontDialog::getFont(&ok, initial, this);
            if (ok) {
                *value = chosen.toString();
                updateFontButton(chooser, *value);
            }
        });
        connect(reset, &QPushButton::clicked, this, [this, chooser, value] {
            value->clear();
            updateFontButton(chooser, *value);
        });
    };
    fontRow(tr("&Interface font:"), m_uiFont, &m_uiFontText, QStringLiteral("uiFont"));
    fontRow(tr("Ta&ble font:"), m_tableFont, &m_tableFontText, QStringLiteral("tableFont"));
    m_maxCellChars = new QSpinBox(page);
    m_maxCellChars->setObjectName(QStringLiteral("maxCellChars"));
    m_maxCellChars->setRange(50, 100000);
    m_maxCellChars->setSuffix(tr(" characters"));
    form->addRow(tr("&Longest text shown in a cell:"), m_maxCellChars);
    m_showAdvanced = new QCheckBox(tr("Show ad&vanced transforms"), page);
    m_showAdvanced->setObjectName(QStringLiteral("showAdvanced"));
    form->addRow(QString(), m_showAdvanced);
    return page;
}

QWidget *PreferencesDialog::extensionsPage(bool input)
{
    auto *page = new QWidget(this);
    auto *layout = new QVBoxLayout(page);
    layout->addWidget(new QLabel(input ? tr("Inputs will not read files with these extensions.")
                                       : tr("Outputs will not write files with these extensions."),
        page));
    QListWidget *&list = input ? m_inputBlocked : m_outputBlocked;
    list = new QListWidget(page);
    list->setObjectName(input ? QStringLiteral("inputBlocked") : QStringLiteral("outputBlocked"));
    list->setAccessibleName(tr("Blocked extensions"));
    auto *label = new QLabel(tr("&Blocked extensions:"), page);
    label->setBuddy(list);
    layout->addWidget(label);
    layout->addWidget(editableList(list, false, page), 1);
    return page;
}

// ----- values

void PreferencesDialog::load(const QVariantMap &values, int page)
{
    switch (page) {
    case General: {
        const int action = values.value(QStringLiteral("startup_action")).toInt();
        (action == 1 ? m_startupEmpty : action == 2 ? m_startupDocument : m_startupRecent)->setChecked(true);
        m_startupPath->setText(QDir::toNativeSeparators(values.value(QStringLiteral("startup_document")).toString()));
        m_startupPath->setEnabled(action == 2);
        m_recentMax->setValue(values.value(QStringLiteral("recent_documents_max")).toInt());
        m_userName->setText(values.value(QStringLiteral("user_name")).toString());
        m_beep->setChecked(values.value(QStringLiteral("beep_when_finished")).toBool());
        m_recoveryMinutes->setValue(values.value(QStringLiteral("auto_recovery_minutes")).toInt());
        m_undoLimit->setValue(values.value(QStringLiteral("undo_limit")).toInt());
        m_checkUpdates->setChecked(values.value(QStringLiteral("check_for_updates")).toBool());
        m_updateUrl->setText(values.value(QStringLiteral("update_base_url")).toString());
        break;
    }
    case Performance:
        m_optimizeFor->setCurrentIndex(values.value(QStringLiteral("optimize_for")).toInt());
        m_maxMemory->setValue(values.value(QStringLiteral("max_memory_usage")).toDouble());
        m_autoRunDelay->setValue(values.value(QStringLiteral("auto_run_delay_ms")).toInt());
        break;
    case Dates: {
        const QString name = values.value(QStringLiteral("locale")).toString();
        const QSignalBlocker blocker(m_locale);
        m_locale->setCurrentIndex(qMax(0, m_locale->findData(name)));
        QStringList formats;
        for (const QString &line : values.value(QStringLiteral("date_formats")).toString().split(QLatin1Char('\n'))) {
            if (!line.trimmed().isEmpty())
                formats << line.trimmed();
        }
        setListItems(m_dateFormats, formats.isEmpty() ? defaultDateFormats(localeOf(name)) : formats);
        updateDateTest();
        break;
    }
    case Appearance:
        m_theme->setCurrentIndex(values.value(QStringLiteral("theme")).toInt());
        m_uiFontText = values.value(QStringLiteral("ui_font")).toString();
        m_tableFontText = values.value(QStringLiteral("table_font")).toString();
        updateFontButton(m_uiFont, m_uiFontText);
        updateFontButton(m_tableFont, m_tableFontText);
        m_maxCellChars->setValue(values.value(QStringLiteral("table_max_cell_chars")).toInt());
        m_showAdvanced->setChecked(values.value(QStringLiteral("show_advanced_transforms")).toBool());
        break;
    case InputExtensions:
        setListItems(m_inputBlocked, values.value(QStringLiteral("input_blocked_extensions")).toStringList());
        break;
    case OutputExtensions:
        setListItems(m_outputBlocked, values.value(QStringLiteral("output_blocked_extensions")).toStringList());
        break;
    default:
        break;
    }
}

QVariantMap PreferencesDialog::values() const
{
    QVariantMap v;
    v.insert(QStringLiteral("startup_action"), m_startupEmpty->isChecked() ? 1 : m_startupDocument->isChecked() ? 2 : 0);
    v.insert(QStringLiteral("startup_document"), QDir::fromNativeSeparators(m_startupPath->text().trimmed()));
    v.insert(QStringLiteral("recent_documents_max"), m_recentMax->value());
    v.insert(QStringLiteral("user_name"), m_userName->text());
    v.insert(QStringLiteral("beep_when_finished"), m_beep->isChecked());
    v.insert(QStringLiteral("auto_recovery_minutes"), m_recoveryMinutes->value());
    v.insert(QStringLiteral("undo_limit"), m_undoLimit->value());
    v.insert(QStringLiteral("check_for_updates"), m_checkUpdates->isChecked());
    v.insert(QStringLiteral("update_base_url"), m_updateUrl->text().trimmed());
    v.insert(QStringLiteral("optimize_for"), m_optimizeFor->currentIndex());
    v.insert(QStringLiteral("max_memory_usage"), m_maxMemory->value());
    v.insert(QStringLiteral("auto_run_delay_ms"), m_autoRunDelay->value());
    const QString locale = m_locale->currentData().toString();
    v.insert(QStringLiteral("locale"), locale);
    QStringList formats;
    for (const QString &format : listItems(m_dateFormats)) {
        if (!format.trimmed().isEmpty())
            formats << format.trimmed();
    }
    // The locale's own list is stored as no list, so that it follows the locale.
    v.insert(QStringLiteral("date_formats"),
        formats == defaultDateFormats(localeOf(locale)) ? QString() : formats.join(QLatin1Char('\n')));
    v.insert(QStringLiteral("theme"), m_theme->currentIndex());
    v.insert(QStringLiteral("ui_font"), m_uiFontText);
    v.insert(QStringLiteral("table_font"), m_tableFontText);
    v.insert(QStringLiteral("table_max_cell_chars"), m_maxCellChars->value());
    v.insert(QStringLiteral("show_advanced_transforms"), m_showAdvanced->isChecked());
    v.insert(QStringLiteral("input_blocked_extensions"), cleanExtensions(listItems(m_inputBlocked)));
    v.insert(QStringLiteral("output_blocked_extensions"), cleanExtensions(listItems(m_outputBlocked)));
    return v;
}

void PreferencesDialog::apply()
{
    if (!m_settings)
        return;
    const QVariantMap v = values();
    for (auto it = v.constBegin(); it != v.constEnd(); ++it) {
        // The spin box shows one decimal: an unchanged maximum is not rewritten rounded.
        if (it.key() == QLatin1String("max_memory_usage")
            && qRound(stored(it.key()).toDouble() * 10) == qRound(it.value().toDouble() * 10))
            continue;
        if (stored(it.key()) != it.value())
            m_settings->setValue(it.key(), it.value());
    }
    m_settings->sync();
    // The lists show what was stored.
    load(v, InputExtensions);
    load(v, OutputExtensions);
}

void PreferencesDialog::restoreDefaults()
{
    if (!m_settings)
        return;
    const int page = currentPage();
    QVariantMap defaults;
    for (const QString &key : pageKeys(page))
        defaults.insert(key, m_settings->defaultValue(key));
    load(defaults, page);
}
