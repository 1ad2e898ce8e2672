#pragma once

#include "core/dataset.h"

#include <QDialog>
#include <QHash>
#include <QPointer>

#include <vector>

class CompareModel;
class GraphScene;
class Node;
class QCheckBox;
class QComboBox;
class QLabel;
class QProgressBar;
class QPushButton;
class QTableView;
class QTimer;

// Matches the rows and columns of two tables and finds the cells that differ. Work goes
// in slices, so a caller can keep the window alive.
class TableComparison
{
public:
    struct Options
    {
        bool byKey = false;
        int leftKey = -1;
        int rightKey = -1;
        bool columnsByHeader = false;
        bool caseSensitive = true;
        bool ignoreWhitespace = false;
        bool numbersAsNumbers = false;
    };
    enum Side { Both, LeftOnly, RightOnly };
    struct Row
    {
        int left = -1;
        int right = -1;
        int differences = 0;
        Side side() const { return left < 0 ? RightOnly : right < 0 ? LeftOnly : Both; }
    };
    struct Column
    {
        int left = -1;
        int right = -1;
    };

    void start(const Dataset &left, const Dataset &right, const Options &options);
    bool step(int budgetMs);
    bool isDone() const { return m_phase > 2; }
    double progress() const;

    bool cellsEqual(const QString &a, const QString &b) const;

    const Dataset &left() const { return m_left; }
    const Dataset &right() const { return m_right; }
    const Options &options() const { return m_options; }
    // Matched rows in left order, then rows of one side only.
    const std::vector<Row> &rows() const { return m_rows; }
    // Matched columns, then columns of one side only.
    const std::vector<Column> &columns() const { return m_columns; }
    int matchedRows() const { return m_matchedRows; }
    int matchedColumns() const { return m_matchedColumns; }
    qint64 differentCells() const { return m_differentCells; }
    int differentRows() const { return m_differentRows; }
    // Keys that repeat: key, count, side name ("left" or "right").
    struct Repeat
    {
        QString key;
        int count;
        bool left;
    };
    const QList<Repeat> &repeats() const { return m_repeats; }

private:
    QString keyOf(const QString &cell) const;

    Dataset m_left, m_right;
    Options m_options;
    int m_phase = 3;
    int m_row = 0;
    QHash<QString, int> m_rightRowOfKey;
    QHash<QString, int> m_rightKeyCount;
    QHash<QString, int> m_leftKeyCount;
    std::vector<char> m_rightMatched;
    std::vector<Row> m_rows;
    std::vector<Column> m_columns;
    int m_matchedRows = 0;
    int m_matchedColumns = 0;
    qint64 m_differentCells = 0;
    int m_differentRows = 0;
    QList<Repeat> m_repeats;
};

// Tools > Compare Items: two items' tables side by side, matched by row number or by a
// key column, with the cells that differ tinted and a report to copy.
class CompareDialog : public QDialog
{
    Q_OBJECT
public:
    explicit CompareDialog(GraphScene *scene, QWidget *parent = nullptr);
    ~CompareDialog() override;

    // More rows than this in all are compared in slices, with Stop.
    static constexpr int SlicedRows = 100000;

    void setItems(Node *left, Node *right);
    bool isComparing() const;
    const TableComparison &comparison() const { return m_comparison; }
    QStringList summaryLines() const;
    QString report() const;

public slots:
    void compare();
    void stop();
    void swap();
    void nextDifference();
    void previousDifference();
    void copyReport();

protected:
    void done(int result) override;

private:
    void reloadItems();
    void fillKeyCombos();
    void compareStep();
    void showResult();
    Node *leftNode() const;
    Node *rightNode() const;
    void moveToDifference(int direction);

    QPointer<GraphScene> m_scene;
    TableComparison m_comparison;
    QTimer *m_timer;
    QComboBox *m_leftCombo;
    QComboBox *m_rightCombo;
    QComboBox *m_matchRows;
    QComboBox *m_leftKey;
    QComboBox *m_rightKey;
    QComboBox *m_matchColumns;
    QCheckBox *m_caseCheck;
    QCheckBox *m_whitespaceCheck;
    QCheckBox *m_numbersCheck;
    QPushButton *m_compareButton;
    QProgressBar *m_progress;
    QPushButton *m_stopButton;
    QLabel *m_summary;
    QCheckBox *m_showRight;
    QCheckBox *m_onlyDifferences;
    QTableView *m_grid;
    CompareModel *m_model;
    QStringList m_summaryLines;
};
