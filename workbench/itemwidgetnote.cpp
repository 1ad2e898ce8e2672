#include "workbench/itemwidgetnote.h"

#include "flow/graphscene.h"
#include "flow/notenode.h"
#include "workbench/parametereditor.h"

#include <QButtonGroup>
#include <QColorDialog>
#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>
#include <QPlainTextEdit>
#include <QToolButton>
#include <QUndoStack>

#include <algorithm>

NoteItemWidget::NoteItemWidget(NoteNode *node, GraphScene *scene, QUndoStack *undoStack, QWidget *parent)
    : ItemWidget(node, scene, undoStack, parent)
{
    tabs()->setTabVisible(1, false);
    m_textEdit = new QPlainTextEdit(formWidget());
    m_textEdit->setTabChangesFocus(true);
    m_textEdit->setMinimumHeight(m_textEdit->fontMetrics().lineSpacing() * 6 + 12);
    addFormRow(tr("Text"), m_textEdit);

    auto *swatches = new QWidget(formWidget());
    auto *swatchLayout = new QHBoxLayout(swatches);
    swatchLayout->setContentsMargins(0, 0, 0, 0);
    m_colourGroup = new QButtonGroup(this);
    m_colourGroup->setExclusive(true);
    const QList<QColor> colours = NoteItemWidget::colours();
    const QStringList names = colourNames();
    for (int i = 0; i < colours.size(); ++i) {
        auto *button = new QToolButton(swatches);
        button->setCheckable(true);
        button->setFixedSize(24, 24);
        button->setToolTip(names.at(i));
        button->setAccessibleName(names.at(i));
        button->setStyleSheet(QStringLiteral("QToolButton { background: %1; border: 1px solid #888; }"
                                             "QToolButton:checked { border: 2px solid palette(highlight); }")
                                  .arg(colours.at(i).name()));
        m_colourGroup->addButton(button, i);
        swatchLayout->addWidget(button);
    }
    auto *other = new QToolButton(swatches);
    other->setText(tr("Other..."));
    swatchLayout->addWidget(other);
    swatchLayout->addStretch(1);
    addFormRow(tr("Colour"), swatches);

    m_pointerCombo = new QComboBox(formWidget());
    ignoreWheelWithoutFocus(m_pointerCombo);
    m_pointerCombo->addItems({tr("None"), tr("Left"), tr("Right"), tr("Up"), tr("Down")});
    addFormRow(tr("Pointer"), m_pointerCombo);

    connect(m_textEdit, &QPlainTextEdit::textChanged, this, [this] {
        const QString text = m_textEdit->toPlainText();
        edit([text](NoteNode *note) { note->setText(text); }, ItemEditCommand::CommentMerge);
    });
    connect(m_colourGroup, &QButtonGroup::idClicked, this,
        [this](int id) { setColour(NoteItemWidget::colours().value(id)); });
    connect(other, &QToolButton::clicked, this, [this] {
        const QColor colour =
            QColorDialog::getColor(noteNode() ? noteNode()->color() : QColor(), this, tr("Colour"));
        if (colour.isValid())
            setColour(colour);
    });
    connect(m_pointerCombo, QOverload<int>::of(&QComboBox::activated), this, [this](int arrow) {
        edit([arrow](NoteNode *note) { note->setArrow(arrow); }, ItemEditCommand::NoMerge);
    });
}

QList<QColor> NoteItemWidget::colours()
{
    return {QColor(0xFF, 0xF2, 0xA8), QColor(0xCD, 0xEF, 0xC4), QColor(0xC9, 0xE2, 0xFF),
        QColor(0xFB, 0xD0, 0xE0), QColor(0xFF, 0xD8, 0xA8), QColor(0xE2, 0xE2, 0xE2)};
}

QStringList NoteItemWidget::colourNames()
{
    return {tr("Yellow"), tr("Green"), tr("Blue"), tr("Pink"), tr("Orange"), tr("Grey")};
}

NoteNode *NoteItemWidget::noteNode() const
{
    return qobject_cast<NoteNode *>(node());
}

void NoteItemWidget::setColour(const QColor &colour)
{
    edit([colour](NoteNode *note) { note->setColor(colour); }, ItemEditCommand::NoMerge);
    updateFromNode();
}

void NoteItemWidget::edit(const std::function<void(NoteNode *)> &change, int mergeId)
{
    NoteNode *note = noteNode();
    if (!note)
        return;
    recordEdit(
        tr("note change"),
        [change](Node *node) {
            if (auto *note = qobject_cast<NoteNode *>(node))
                change(note);
        },
        mergeId, QStringLiteral("note"));
}

void NoteItemWidget::updateFromNode()
{
    const NoteNode *note = noteNode();
    if (!note)
        return;
    if (m_textEdit->toPlainText() != note->text()) {
        const QSignalBlocker blocker(m_textEdit);
        m_textEdit->setPlainText(note->text());
    }
    const int index = colours().indexOf(note->color());
    for (QAbstractButton *button : m_colourGroup->buttons())
        button->setChecked(m_colourGroup->id(button) == index);
    const QSignalBlocker blocker(m_pointerCombo);
    m_pointerCombo->setCurrentIndex(qBound(0, note->arrow(), 4));
}

FlowItemWidget::FlowItemWidget(GraphScene *scene, QUndoStack *undoStack, QWidget *parent)
    : ItemWidget(nullptr, scene, undoStack, parent)
{
    tabs()->setTabVisible(1, false);
    m_notesEdit = new QPlainTextEdit(formWidget());
    m_notesEdit->setTabChangesFocus(true);
    m_notesEdit->setMinimumHeight(m_notesEdit->fontMetrics().lineSpacing() * 6 + 12);
    addFormRow(tr("Notes"), m_notesEdit);

    m_localeCombo = new QComboBox(formWidget());
    m_localeCombo->setEditable(true);
    m_localeCombo->setInsertPolicy(QComboBox::NoInsert);
    ignoreWheelWithoutFocus(m_localeCombo);
    QList<QPair<QString, QString>> entries;
    const QList<QLocale> locales =
        QLocale::matchingLocales(QLocale::AnyLanguage, QLocale::AnyScript, QLocale::AnyCountry);
    for (const QLocale &locale : locales) {
        entries.append({tr("%1 (%2) - %3")
                            .arg(QLocale::languageToString(locale.language()),
                                QLocale::countryToString(locale.country()), locale.bcp47Name()),
            locale.name()});
    }
    std::sort(entries.begin(), entries.end());
    entries.erase(std::unique(entries.begin(), entries.end()), entries.end());
    for (const auto &entry : entries)
        m_localeCombo->addItem(entry.first, entry.second);
    addFormRow(tr("Locale"), m_localeCombo);

    m_idLabel = new QLabel(formWidget());
    m_idLabel->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_idRow = addFormRow(tr("Document id"), m_idLabel);
    m_summaryLabel = new QLabel(formWidget());
    addFormRow(QString(), m_summaryLabel);

    connect(m_notesEdit, &QPlainTextEdit::textChanged, this, [this] {
        GraphScene *scene = this->scene();
        if (!scene)
            return;
        const QString before = notes(scene);
        const QString after = m_notesEdit->toPlainText();
        QPointer<GraphScene> guard(scene);
        auto apply = [guard](const QString &text) {
            if (guard)
                guard->setProperty("documentNotes", text);
        };
        apply(after);
        if (this->undoStack())
            this->undoStack()->push(new ItemEditCommand(
                scene, -1, tr("flow notes change"), [apply, before](Node *) { apply(before); },
                [apply, after](Node *) { apply(after); }, ItemEditCommand::CommentMerge,
                QStringLiteral("flow/notes")));
    });
    connect(m_localeCombo, QOverload<int>::of(&QComboBox::activated), this, [this] {
        GraphScene *scene = this->scene();
        if (!scene)
            return;
        const QString before = QLocale().name();
        const QString after = m_localeCombo->currentData().toString();
        if (after.isEmpty() || after == before)
            return;
        QPointer<GraphScene> guard(scene);
        auto apply = [guard](const QString &name) {
            QLocale::setDefault(QLocale(name));
            if (!guard)
                return;
            guard->setProperty("documentLocale", name);
            const QList<Node *> nodes = guard->nodes();
            for (Node *node : nodes)
                node->setStatus(Node::NeedsUpdating, false);
            guard->runIfAuto();
        };
        apply(after);
        if (this->undoStack())
            this->undoStack()->push(new ItemEditCommand(
                scene, -1, tr("locale change"), [apply, before](Node *) { apply(before); },
                [apply, after](Node *) { apply(after); }));
    });
}

QString FlowItemWidget::notes(const GraphScene *scene)
{
    return scene ? scene->property("documentNotes").toString() : QString();
}

QString FlowItemWidget::summaryText() const
{
    int inputs = 0, transforms = 0, outputs = 0, charts = 0, notes = 0;
    const QList<Node *> nodes = scene() ? scene()->nodes() : QList<Node *>();
    for (const Node *node : nodes) {
        const QString type = node->typeName();
        if (type == QLatin1String("Input"))
            ++inputs;
        else if (type == QLatin1String("Transform"))
            ++transforms;
        else if (type == QLatin1String("Output"))
            ++outputs;
        else if (type == QLatin1String("Chart"))
            ++charts;
        else if (type == QLatin1String("Note"))
            ++notes;
    }
    return tr("%1 inputs, %2 transforms, %3 outputs, %4 charts, %5 notes")
        .arg(inputs)
        .arg(transforms)
        .arg(outputs)
        .arg(charts)
        .arg(notes);
}

void FlowItemWidget::updateFromNode()
{
    const QString text = notes(scene());
    if (m_notesEdit->toPlainText() != text) {
        const QSignalBlocker blocker(m_notesEdit);
        m_notesEdit->setPlainText(text);
    }
    {
        const QSignalBlocker blocker(m_localeCombo);
        m_localeCombo->setCurrentIndex(m_localeCombo->findData(QLocale().name()));
    }
    const QString id = scene() ? scene()->property("documentId").toString() : QString();
    m_idLabel->setText(id);
    setRowVisible(m_idRow, !id.isEmpty());
    m_summaryLabel->setText(summaryText());
}
