#include "workbench/recoverydialog.h"

#include "flow/documentelement.h"
#include "workbench/dialogutil.h"

#include <QDateTime>
#include <QDialogButtonBox>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLabel>
#include <QListWidget>
#include <QLocale>
#include <QPushButton>
#include <QVBoxLayout>
#include <QXmlStreamReader>

namespace {
constexpr int PathRole = Qt::UserRole + 1;
} // namespace

QString RecoveryDialog::documentPath(const QString &recoveryFile)
{
    QFile file(recoveryFile);
    if (!file.open(QIODevice::ReadOnly))
        return QString();
    QXmlStreamReader xml(&file);
    while (!xml.atEnd()) {
        if (xml.readNext() == QXmlStreamReader::StartElement && xml.name() == QLatin1String("doc_path"))
            return QDir::fromNativeSeparators(DocumentElement::decode(xml.attributes().value(QStringLiteral("value")).toString()));
        // The meta block comes first; items mean it had no document path.
        if (xml.tokenType() == QXmlStreamReader::StartElement
            && (xml.name() == QLatin1String("inputs") || xml.name() == QLatin1String("transforms")))
            break;
    }
    return QString();
}

RecoveryDialog::RecoveryDialog(const QStringList &files, QWidget *parent)
    : QDialog(parent)
{
    setObjectName(QStringLiteral("RecoveryDialog"));
    setWindowTitle(tr("Recover Flows"));
    setModal(true);
    auto *layout = new QVBoxLayout(this);
    auto *text = new QLabel(tr("Tabrelle did not close normally. These flows were saved for recovery:"), this);
    text->setWordWrap(true);
    layout->addWidget(text);
    m_list = new QListWidget(this);
    m_list->setObjectName(QStringLiteral("recoveryList"));
    m_list->setAccessibleName(tr("Recovered flows"));
    text->setBuddy(m_list);
    for (const QString &file : files) {
        const QString document = documentPath(file);
        const QString name = document.isEmpty() ? tr("Untitled") : QFileInfo(document).fileName();
        const QString saved = QLocale().toString(QFileInfo(file).lastModified(), QLocale::ShortFormat);
        auto *item = new QListWidgetItem(tr("%1 - saved %2").arg(name, saved), m_list);
        item->setData(PathRole, file);
        item->setToolTip(document.isEmpty() ? QDir::toNativeSeparators(file) : QDir::toNativeSeparators(document));
    }
    m_list->setCurrentRow(0);
    layout->addWidget(m_list, 1);

    auto *buttons = new QDialogButtonBox(this);
    QPushButton *open = buttons->addButton(tr("&Open"), QDialogButtonBox::AcceptRole);
    open->setObjectName(QStringLiteral("openButton"));
    open->setDefault(true);
    QPushButton *discard = buttons->addButton(tr("&Discard"), QDialogButtonBox::DestructiveRole);
    discard->setObjectName(QStringLiteral("discardButton"));
    QPushButton *later = buttons->addButton(tr("Decide &Later"), QDialogButtonBox::RejectRole);
    later->setObjectName(QStringLiteral("laterButton"));
    discard->setAutoDefault(false);
    later->setAutoDefault(false);
    layout->addWidget(buttons);
    connect(open, &QPushButton::clicked, this, [this] {
        m_choice = Open;
        accept();
    });
    connect(m_list, &QListWidget::itemActivated, open, &QPushButton::click);
    connect(discard, &QPushButton::clicked, this, [this] {
        m_choice = Discard;
        accept();
    });
    connect(later, &QPushButton::clicked, this, &QDialog::reject);
    DialogGeometry::restore(this, QSize(480, 280));
}

QString RecoveryDialog::chosenFile() const
{
    QListWidgetItem *item = m_list->currentItem();
    return item ? item->data(PathRole).toString() : QString();
}

void RecoveryDialog::selectFile(const QString &path)
{
    for (int i = 0; i < m_list->count(); ++i) {
        if (m_list->item(i)->data(PathRole).toString() == path)
            m_list->setCurrentRow(i);
    }
}

QStringList RecoveryDialog::rows() const
{
    QStringList texts;
    for (int i = 0; i < m_list->count(); ++i)
        texts << m_list->item(i)->text();
    return texts;
}
