#pragma once

#include <QFrame>

class QLineEdit;
class QListWidget;
class QListWidgetItem;
class Transform;

// The popup that opens where a connection dragged from an item is dropped on empty
// canvas: a search field over "Output", "Chart" and the transforms; the chosen one is
// added there, connected from the item.
class ItemChooserPopup : public QFrame
{
    Q_OBJECT
public:
    ItemChooserPopup(const QString &startName, const QList<Transform *> &prototypes, bool showAdvanced,
        QWidget *parent = nullptr);

    QLineEdit *searchEdit() const { return m_search; }
    QStringList listedTexts() const;

    enum Kind { TransformItem, OutputItem, ChartItem };

signals:
    // prototype is null for "Output" and "Chart".
    void chosen(int kind, const Transform *prototype);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void filter();
    void choose(QListWidgetItem *item);

    QList<Transform *> m_prototypes;
    bool m_showAdvanced;
    QLineEdit *m_search;
    QListWidget *m_list;
};
