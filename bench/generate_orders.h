#pragma once

#include <QString>

// The delimited files the read benchmarks use, made once into a folder and kept there.
// The same seed gives the same bytes on every machine.
namespace benchdata {

// orders.csv: 1,000,000 rows of id, date (d/M/yyyy), amount (two decimals), quantity,
// category, description and paid (true/false), LF line ends, a header row. About 6% of
// the descriptions are quoted, holding a comma or doubled quotes. Returns the file's path.
QString ensureOrders(const QString &folder, int rows = 1000000);

// customers.csv: 100,000 rows of id, name, email, city, country, signup date, phone and
// notes, CRLF line ends, a header row; names and some notes are quoted.
QString ensureCustomers(const QString &folder, int rows = 100000);

} // namespace benchdata
