// One statement, two engines, one answer: values to the last digit, their order, and errors.
// SPDX-License-Identifier: MIT
#include "tests/contract/engines.h"

#include <pelmora/own_tables.h>

#include <gtest/gtest.h>

#include <array>
#include <charconv>
#include <string>
#include <vector>

#if defined(PELMORA_TEST_POSTGRESQL)

namespace pelmora {
namespace {

// Exact: the shortest digits that read back as the same number.
std::string written(const Value& value) {
  if (const auto* text = std::get_if<std::string>(&value)) return "'" + *text + "'";
  std::array<char, 64> buffer{};
  char* end = buffer.data();
  if (const auto* whole = std::get_if<std::int64_t>(&value)) {
    end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), *whole).ptr;
  } else if (const auto* real = std::get_if<double>(&value)) {
    end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), *real).ptr;
    return std::string(buffer.data(), end) + "r";
  } else {
    return "null";
  }
  return {buffer.data(), end};
}

template <class Curves>
std::string answer(const Curves& curves, const std::string& statement) {
  std::string text;
  try {
    if (statement.substr(0, 6) != "Select") {
      curves.execute(statement);
      return "done";
    }
    for (const auto rows = curves.select(statement); !rows->atEnd(); rows->moveNext()) {
      for (std::size_t i = 0; i < rows->fieldCount(); ++i)
        text += (i == 0 ? "" : ", ") + written(rows->value(i));
      text += "\n";
    }
  } catch (const Error& error) {
    return "error " + std::to_string(error.number());
  }
  return text;
}

template <class Curves>
void fill(const Curves& curves) {
  createTable(curves.connection, {"sample",
                                  {{"ID", OwnColumnType::key},
                                   {"n", OwnColumnType::whole},
                                   {"x", OwnColumnType::real},
                                   {"y", OwnColumnType::real},
                                   {"words", OwnColumnType::text},
                                   {"loose", OwnColumnType::anything}}});
  for (const char* row :
       {"(3, 0.1, 7, 'Apfel', 12)", "(1, 2.5, 0, 'öl', '12')", "(NULL, 1E-300, 1E300, NULL, 'b')",
        "(2, -3, 3, 'ÖL', 1.5)", "(3, 1E200, -1E200, 'apfel', NULL)", "(0, NULL, 1, '', 'B')",
        "(-4, 123456789.123456789, 0.3, 'Zebra', -7)", "(9007199254740993, 5E-324, 2, 'ab%c', 12)"})
    curves.execute("Insert into sample (n, x, y, words, loose) VALUES " + std::string(row));
  for (const char* row : {"(1, 'one')", "(3, 'three')", "(3, 'THREE again')", "(5, 'five')"})
    curves.execute("Insert into masterMeterList (ReCalID, SerialNumber) VALUES " +
                   std::string(row));
}

const std::vector<std::string>& questions() {
  static const std::vector<std::string> statements{
      // arithmetic
      "Select ID, n + 1, n - 2, n * 3, n / 2, -n from sample",
      "Select ID, x + y, x - y, -x from sample",
      "Select ID, x * 3 from sample",
      "Select x * x from sample where ID = 3",
      "Select x * x from sample where ID = 5",
      "Select x * y from sample",
      "Select x / 1E300 from sample where ID = 3",
      "Select x / y from sample",
      "Select x / y from sample where y <> 0",
      "Select n / x from sample where x <> 0 and x > 1E-100",
      "Select 2 ^ 10, 2 ^ 0.5, 2 ^ -1, -2 ^ 2, 10 ^ -400, 0 ^ 0",
      "Select 0 ^ -1",
      "Select (-8) ^ 0.5",
      "Select 10 ^ 400",
      "Select n * n from sample where n > 5",
      "Select 9223372036854775807 + 1",
      "Select 1 / 3, 1.0 / 3, 7 / 2, 6 / 2, 1E-5 * 3, 5 - 5.0",
      "Select '2' + 3, '2.5' * 2, '1e2' / 4",
      "Select 'a' * 2",
      "Select n & '-' & words & x from sample where ID <> 3",
      "Select 'a' & 1.5 & 1E-05 & 1E20 & 123456789.123456789 & 0.1",
      "Select words + '!' from sample",
      "Select NULL + 1, NULL & 'a', NULL & NULL, 'a' + NULL",
      "Select (x - y) / (x + y + 1) * n from sample where ID in (1, 2, 4)",
      // conditions
      "Select ID from sample where words = 'APFEL'",
      "Select ID from sample where words = 'Öl'",
      "Select ID from sample where words <> 'öl'",
      "Select ID from sample where words < 'b'",
      "Select ID from sample where words >= 'ÖL'",
      "Select ID from sample where words between 'A' and 'P'",
      "Select ID from sample where words in ('ÖL', 'zebra')",
      "Select ID from sample where words not in ('ÖL', 'zebra')",
      "Select ID from sample where words is null",
      "Select ID from sample where not words is null",
      "Select ID from sample where words = ''",
      "Select ID from sample where words like 'a%'",
      "Select ID from sample where words like '%[k-m]'",
      "Select ID from sample where words like '[!a-z]%'",
      "Select ID from sample where words like '_l'",
      "Select ID from sample where words like 'ab[%]c'",
      "Select ID from sample where words not like 'a%'",
      "Select ID from sample where n = 3 or n = 1",
      "Select ID from sample where n = 2.0",
      "Select ID from sample where n = '3'",
      "Select ID from sample where n = 'three'",
      "Select ID from sample where n <> 'three'",
      "Select ID from sample where n > 'three'",
      "Select ID from sample where n in (1, 2, 3)",
      "Select ID from sample where n not in (1, 2, 3)",
      "Select ID from sample where x > 0 and not (y < 1 or n = 3)",
      "Select ID from sample where x between -3 and 0.1",
      "Select ID from sample where n < x",
      "Select ID from sample where words = 5",
      "Select ID from sample where words > 5",
      "Select ID from sample where loose = 12",
      "Select ID from sample where loose = '12'",
      "Select ID from sample where loose <> 12",
      "Select ID from sample where loose = 'b'",
      "Select ID from sample where loose = 1.5",
      "Select ID from sample where loose > 2",
      "Select ID from sample where loose < 2",
      "Select ID from sample where loose in (12, 'b')",
      "Select ID from sample where n",
      "Select ID from sample where True",
      "Select ID from sample where False",
      "Select n = 3, words = 'apfel', x > y, True, Not True, words is null from sample",
      "Select #1/31/2024#, #2024-02-29 13:05:00#, #13.4.99#",
      // order, groups, aggregates
      "Select * from sample",
      "Select words, ID from sample order by words",
      "Select words, ID from sample order by words desc, ID desc",
      "Select n, ID from sample order by n",
      "Select loose, ID from sample order by loose",
      "Select loose, ID from sample order by loose desc",
      "Select top 3 ID, x from sample order by x desc",
      "Select top 2 * from sample",
      "Select ID, x * 2 as twice from sample where ID < 6 order by twice",
      "Select distinct n from sample",
      "Select distinct words from sample",
      "Select distinct words from sample order by words desc",
      "Select distinct loose from sample",
      "Select distinct n, words from sample order by words",
      "Select count(*), count(n), count(words), count(loose) from sample",
      "Select min(n), max(n), min(x), max(x), sum(n), avg(n) from sample where n < 100",
      "Select min(words), max(words), min(loose), max(loose) from sample",
      "Select sum(x), avg(x), sum(y) from sample where ID in (1, 2, 4, 7)",
      "Select sum(x) from sample where ID = 99",
      "Select sum(words) from sample",
      "Select n, count(*) as c from sample group by n",
      "Select words, count(*) as c, sum(y) as s from sample group by words",
      "Select words, count(*) as c from sample group by words having count(*) > 1",
      "Select loose, count(*) as c from sample group by loose order by count(*) desc",
      "Select n, max(words) as w from sample group by n order by n desc",
      "Select words, n from sample group by n",
      "Select distinct count(*) from sample",
      "Select distinct n, count(*) as c from sample group by n, words order by n",
      "Select m.SerialNumber, count(*) as c from sample inner join masterMeterList as m on "
      "sample.words <> m.SerialNumber group by m.SerialNumber",
      // joins
      "Select sample.ID, m.SerialNumber from sample inner join masterMeterList as m on sample.n = "
      "m.ReCalID",
      "Select sample.ID, m.SerialNumber from sample left join masterMeterList as m on sample.n = "
      "m.ReCalID",
      "Select sample.ID, m.SerialNumber from sample right join masterMeterList as m on sample.n = "
      "m.ReCalID",
      "Select m.* from sample left join masterMeterList as m on sample.n = m.ReCalID where "
      "m.SerialNumber like 'three%'",
      "Select count(*) from sample, masterMeterList",
      "Select a.ID, b.ID from (sample as a inner join sample as b on a.words = b.words) left join "
      "masterMeterList as m on m.ReCalID = a.n where a.ID <> b.ID",
      // names and shapes
      "Select nothing from sample",
      "Select * from nowhere",
      "Select ID as a, ID as a from sample where ID = 1",
      "Select s.id from sample as S where S.WORDS = 'zebra'",
      // changes
      "Update sample set x = x / 0 where ID = 1",
      "Update sample set x = n + 0.5, words = words & '!' where ID = 1",
      "Update sample set loose = 'text' where ID = 2",
      "Update sample set loose = 3.0 where ID = 4",
      "Insert into sample (n, words, loose) Select n + 10, words, loose from sample where ID <= 3",
      "Insert into sample (n, x) Select n, x / (n - 3) from sample where ID in (4, 5)",
      "Insert into sample (ID, n) VALUES (100, -0.0)",
      "Insert into sample (n) VALUES (1)",
      "Insert into sample (n, nothing) VALUES (1, 2)",
      "Insert into sample (n, n) VALUES (1, 2)",
      "Delete from sample where words = 'ZEBRA' or n is null",
      "Select * from sample",
  };
  return statements;
}

TEST(same_answers, come_from_both_engines) {
  if (!test::ServerCurves::lack().empty()) GTEST_SKIP() << test::ServerCurves::lack();
  const test::FileCurves file;
  const test::ServerCurves server;
  fill(file);
  fill(server);
  for (const std::string& statement : questions())
    EXPECT_EQ(answer(server, statement), answer(file, statement)) << statement;
}

}  // namespace
}  // namespace pelmora

#endif
