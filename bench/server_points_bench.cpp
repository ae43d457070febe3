// Points of a series on a PostgreSQL server: server_points_bench ADDRESS ROUNDS makes a curve
// database there, stores 32,000 points and reads them back, and prints the medians in milliseconds
// and the requests of one round. bench/server_points compares them with the plain client.
// SPDX-License-Identifier: MIT
#include "adapters/postgresql/client.h"
#include "adapters/postgresql/postgres_database.h"
#include "store/connection.h"
#include "store/point_rows.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

using namespace pelmora;

struct Measured {
  std::vector<double> milliseconds;
  std::size_t requests = 0;

  template <class Action>
  void add(Action&& action) {
    const std::size_t before = postgres::requestsSent();
    const auto begin = std::chrono::steady_clock::now();
    action();
    const std::chrono::duration<double, std::milli> taken =
        std::chrono::steady_clock::now() - begin;
    milliseconds.push_back(taken.count());
    requests = postgres::requestsSent() - before;
  }
  void print(const char* name) {
    std::ranges::sort(milliseconds);
    std::printf("%s %.3f\n%s_requests %zu\n", name, milliseconds[milliseconds.size() / 2], name,
                requests);
  }
};

void measure(const std::string& address, int rounds) {
  createPostgresCurveDatabase(address);
  const ConnectionPtr curves = postgresConnection(address);
  curves->open();
  constexpr std::size_t count = 32000;
  PointArray points(count);
  for (std::size_t i = 0; i < count; ++i) {
    points(i, 0) = 0.37 * static_cast<double>(i);
    points(i, 1) = 1200 + 1 / (1.0 + static_cast<double>(i));
  }
  Measured written, read;
  for (int round = 0; round < rounds; ++round) {
    curves->execute("Delete from raw1");
    const auto rows = curves->openRecordset("Select * from raw1 where seriesID=1",
                                            CursorType::dynamic, LockType::batchOptimistic);
    written.add([&] { writePoints(*rows, 1, points); });
    read.add([&] {
      const auto stored =
          curves->openRecordset("Select roshko, strouhal from raw1 where seriesID = 1",
                                CursorType::forwardOnly, LockType::optimistic);
      if (pointsFromRows(*stored).size() != count) std::exit(1);
    });
  }
  written.print("write");
  read.print("read");
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) return 2;
  try {
    measure(argv[1], std::atoi(argv[2]));
    return 0;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
}
