// SPDX-License-Identifier: MIT
#include <pelmora/pelmora.h>

#include <iostream>

int main() {
  const pelmora::RawData data;
  std::cout << data.NumberOfFittedPoints << " fitted points by default, library in " << data.Path()
            << "\n";
  return data.NumberOfFittedPoints == 40 && !data.Path().empty() ? 0 : 1;
}
