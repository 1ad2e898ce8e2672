#pragma once

#include <QWidget>

class QAction;
class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QListView;
class QModelIndex;
class QStandardItemModel;
class QToolButton;
class Settings;
class Transform;

// The left pane: buttons that add inputs, outputs, charts and notes, and the list of
// transforms with a search box, a category choice and the "show advanced" switch.
// Activating a transform asks the window to add it by the canvas's rules.
class TransformPane : public QWidget
{
    Q_OBJECT
public:
    // The actions behind the four item buttons; any may be null.
    struct ItemActions
    {
        QAction *addInput = nullptr;
        QAction *pasteAsInput = nullptr;
        QAction *addOutput = nullptr;
        QAction *addChart = nullptr;
        QAction *addChartFile = nullptr;
        QAction *addNote = nullptr;
    };

    TransformPane(const QList<Transform *> &prototypes, Settings *settings, const ItemActions &actions,
        QWidget *parent = nullptr);

    bool showAdvanced() const;
    void setShowAdvanced(bool on);
    int category() const;
    void setCategory(int category);
    void setSearchText(const QString &text);
    // Focuses the search box with its text selected.
    void focusSearch();

    // What the list shows, for tests: display names, header rows in brackets.
    QStringList listedTexts() const;
    QString hintText() const;
    QLineEdit *searchEdit() const { return m_searchEdit; }
    QListView *transformList() const { return m_transformList; }

    // Every listed transform matches all words: each word starts one of its keywords.
    static bool matches(const Transform *transform, const QStringList &words);
    static QStringList searchWords(const QString &text);
    // Whether every word begins a word of the transform's display name.
    static bool nameMatches(const Transform *transform, const QStringList &words);

signals:
    void transformActivated(const Transform *prototype);
    void showAdvancedChanged(bool on);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void rebuild();
    void activate(const QModelIndex &index);
    bool isListed(const Transform *transform, bool ignoreAdvanced) const;

    QList<Transform *> m_prototypes;
    Settings *m_settings;
    QLineEdit *m_searchEdit;
    QComboBox *m_categoryCombo;
    QCheckBox *m_showAdvancedCheckBox;
    QListView *m_transformList;
    QStandardItemModel *m_model;
    QLabel *m_hintLabel;
};
