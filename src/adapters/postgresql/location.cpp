// SPDX-License-Identifier: MIT
#include "adapters/postgresql/location.h"

#include <cstddef>
#include <cstdlib>

namespace pelmora::postgres {

namespace {

constexpr std::string_view secondsToConnect = "10";

bool hasParameter(std::string_view location, std::string_view name) {
  std::size_t next = location.find('?');
  for (; next != std::string_view::npos; next = location.find('&', next)) {
    ++next;
    if (location.substr(next).starts_with(std::string(name) + "=")) return true;
  }
  return false;
}

}  // namespace

std::string connectionAddress(std::string_view location) {
  std::string address(location);
  const auto add = [&](std::string_view name, std::string_view value) {
    address += address.find('?') == std::string::npos ? '?' : '&';
    address += std::string(name) + "=" + std::string(value);
  };
  if (!hasParameter(location, "fallback_application_name"))
    add("fallback_application_name", "pelmora");
  const bool isGivenElsewhere =
      hasParameter(location, "connect_timeout") || hasParameter(location, "service") ||
      std::getenv("PGCONNECT_TIMEOUT") != nullptr || std::getenv("PGSERVICE") != nullptr;
  if (!isGivenElsewhere) add("connect_timeout", secondsToConnect);
  return address;
}

}  // namespace pelmora::postgres
