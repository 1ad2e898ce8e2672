#pragma once

#include <QElapsedTimer>
#include <QRegularExpression>
#include <QWidget>

class DataTableView;
class QComboBox;
class QLabel;
class QLineEdit;
class QTimer;
class QToolButton;

// The find bar above a data table. A search walks the cells from the current one, in
// slices of at most MaxCellsPerSlice cells and SliceMs milliseconds driven by a
// zero-interval timer, so the window stays responsive on any table; Escape or "Cancel"
// stops it.
class TableFindBar : public QWidget
{
    Q_OBJECT
public:
    static constexpr int MaxCellsPerSlice = 200000;
    static constexpr int SliceMs = 50;

    explicit TableFindBar(DataTableView *view, QWidget *parent = nullptr);

    QString text() const;
    void setText(const QString &text);
    void setCaseSensitive(bool on);
    void setWholeCell(bool on);
    void setRegularExpression(bool on);
    // -1 searches all columns.
    void setColumn(int column);
    // Fills the column list from the table; called when its data changes.
    void updateColumns();

    bool isSearching() const { return m_searching; }
    QString statusText() const;

    // Whether a cell's text matches the current settings.
    bool matches(const QString &cell) const;

public slots:
    void findNext();
    void findPrevious();
    void cancel();
    void activate();

signals:
    void closed();
    void searchFinished(bool found);

protected:
    void keyPressEvent(QKeyEvent *event) override;

private slots:
    void onSlice();
    void onSettingsChanged();

private:
    void start(bool forward);
    void finish(bool found, int row, int column);
    void setStatus(const QString &text, bool notFound = false);

    DataTableView *m_view;
    QLineEdit *m_edit;
    QToolButton *m_caseButton;
    QToolButton *m_wholeButton;
    QToolButton *m_regexButton;
    QComboBox *m_columnCombo;
    QToolButton *m_previousButton;
    QToolButton *m_nextButton;
    QToolButton *m_cancelButton;
    QLabel *m_statusLabel;
    QTimer *m_timer;

    // The search in progress.
    bool m_searching = false;
    bool m_forward = true;
    bool m_wrapped = false;
    bool m_hadCurrent = false;
    int m_row = 0;
    int m_column = 0;
    int m_startRow = 0;
    int m_startColumn = 0;
    qint64 m_cellsChecked = 0;
    qint64 m_cellsTotal = 0;
    QRegularExpression m_regex;
    QString m_needle;
};
