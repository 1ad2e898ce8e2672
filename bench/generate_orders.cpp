#include "generate_orders.h"

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include <cstdio>

namespace {

// splitmix64: tiny, fast, and the same numbers everywhere.
class Random
{
public:
    explicit Random(quint64 seed)
        : m_state(seed)
    { }
    quint64 next()
    {
        quint64 z = (m_state += 0x9E3779B97F4A7C15ULL);
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ULL;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBULL;
        return z ^ (z >> 31);
    }
    int below(int n) { return int(next() % quint64(n)); }

private:
    quint64 m_state;
};

const char *const Categories[] = {"books", "garden", "kitchen", "toys", "music", "sports", "office",
    "clothing", "tools", "health", "beauty", "travel"};

const char *const Words[] = {"blue", "small", "large", "steel", "wooden", "cotton", "set", "pack", "classic",
    "premium", "basic", "deluxe", "mini", "pro", "lamp", "chair", "table", "mug", "pen", "notebook", "bottle",
    "bag", "box", "cable", "charger", "shirt", "sock", "glove", "hat", "ball", "racket", "brush", "cream",
    "soap", "towel", "pillow", "blanket", "candle", "frame", "clock", "red", "green", "black", "white",
    "silver", "organic", "travel", "kids", "garden", "kitchen", "with", "and", "for", "extra", "soft",
    "light", "heavy", "duty", "eco", "refill"};

const char *const FirstNames[] = {"Anna", "Ben", "Clara", "David", "Eva", "Felix", "Grace", "Hugo", "Ines",
    "Jonas", "Karla", "Leo", "Mia", "Noah", "Olga", "Paul", "Rosa", "Sven", "Tara", "Ugo"};
const char *const LastNames[] = {"Smith", "Jones", "Miller", "Brown", "Garcia", "Martin", "Rossi", "Novak",
    "Keller", "Weber", "Dubois", "Silva", "Kowalski", "Berg", "Costa", "Lund"};
const char *const Cities[] = {
    "Lisbon", "Oslo", "Vienna", "Leeds", "Lyon", "Graz", "Porto", "Turku", "Ghent", "Cork", "Bern", "Brno"};
const char *const Countries[] = {"PT", "NO", "AT", "GB", "FR", "AT", "PT", "FI", "BE", "IE", "CH", "CZ"};

template<int N>
const char *pick(Random &random, const char *const (&list)[N])
{
    return list[random.below(N)];
}

void appendWords(QByteArray &line, Random &random, int count)
{
    for (int w = 0; w < count; ++w) {
        if (w > 0)
            line += ' ';
        line += pick(random, Words);
    }
}

// Writes the file through a QSaveFile, so that an interrupted run leaves no half file.
template<typename MakeRows>
QString ensureFile(const QString &folder, const QString &name, MakeRows makeRows)
{
    QDir().mkpath(folder);
    const QString path = QDir(folder).filePath(name);
    if (QFileInfo(path).isFile())
        return path;
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return QString();
    makeRows(file);
    return file.commit() ? path : QString();
}

} // namespace

namespace benchdata {

QString ensureOrders(const QString &folder, int rows)
{
    const QString name =
        rows == 1000000 ? QStringLiteral("orders.csv") : QStringLiteral("orders-%1.csv").arg(rows);
    return ensureFile(folder, name, [rows](QSaveFile &file) {
        Random random(20240601);
        QByteArray block = "id,date,amount,quantity,category,description,paid\n";
        char number[64];
        for (int r = 1; r <= rows; ++r) {
            const int day = 1 + random.below(28);
            const int month = 1 + random.below(12);
            const int year = 2015 + random.below(10);
            const int cents = random.below(100000);
            const int quantity = 1 + random.below(50);
            std::snprintf(number, sizeof number, "%d,%d/%d/%d,%d.%02d,%d,", r, day, month, year, cents / 100,
                cents % 100, quantity);
            block += number;
            block += pick(random, Categories);
            block += ',';
            const int kind = random.below(100);
            const int words = 4 + random.below(6);
            if (kind < 3) {
                // A comma inside the text: the cell must be quoted.
                block += '"';
                appendWords(block, random, 2);
                block += ", ";
                appendWords(block, random, words - 2);
                block += '"';
            } else if (kind < 6) {
                // Quotes inside the text, doubled in the file.
                block += "\"";
                appendWords(block, random, 1);
                block += " \"\"";
                appendWords(block, random, 1);
                block += "\"\" ";
                appendWords(block, random, words - 2);
                block += '"';
            } else {
                appendWords(block, random, words);
            }
            block += random.below(2) ? ",true\n" : ",false\n";
            if (block.size() > (1 << 20)) {
                file.write(block);
                block.clear();
            }
        }
        file.write(block);
    });
}

QString ensureCustomers(const QString &folder, int rows)
{
    return ensureFile(folder, QStringLiteral("customers.csv"), [rows](QSaveFile &file) {
        Random random(19700101);
        QByteArray block = "customer_id,name,email,city,country,signup_date,phone,notes\r\n";
        char text[128];
        for (int r = 1; r <= rows; ++r) {
            const char *first = pick(random, FirstNames);
            const char *last = pick(random, LastNames);
            const int city = random.below(12);
            std::snprintf(text, sizeof text,
                "C%06d,\"%s, %s\",%s.%s%d@example.org,%s,%s,%04d-%02d-%02d,+%d %09d,", r, last, first, first,
                last, r, Cities[city], Countries[city], 2010 + random.below(15), 1 + random.below(12),
                1 + random.below(28), 30 + random.below(20), random.below(1000000000));
            block += text;
            const int kind = random.below(10);
            if (kind == 0) {
                block += "\"prefers \"\"";
                appendWords(block, random, 2);
                block += "\"\"\"";
            } else if (kind < 4) {
                appendWords(block, random, 3);
            }
            block += "\r\n";
            if (block.size() > (1 << 20)) {
                file.write(block);
                block.clear();
            }
        }
        file.write(block);
    });
}

} // namespace benchdata
