// SPDX-License-Identifier: MIT
#include "apps/pelmora/output/terminal_colour.h"

#include <unistd.h>

#include <cstdlib>
#include <string_view>

namespace pelmora::cli {
namespace {

const char* sequence(Colour colour) {
  switch (colour) {
    case Colour::red: return "\033[1;31m";
    case Colour::yellow: return "\033[1;33m";
    case Colour::green: return "\033[1;32m";
  }
  return "";
}

bool isSet(const char* variable) {
  const char* value = std::getenv(variable);
  return value != nullptr && *value != '\0';
}

}  // namespace

bool showsColour(std::FILE* stream) {
  if (isSet("NO_COLOR") || isatty(fileno(stream)) == 0) return false;
  return isSet("TERM") && std::string_view(std::getenv("TERM")) != "dumb";
}

std::string coloured(std::FILE* stream, Colour colour, const std::string& text) {
  return showsColour(stream) ? sequence(colour) + text + "\033[0m" : text;
}

}  // namespace pelmora::cli
