// The help text, broken into lines of at most 80 columns.
// SPDX-License-Identifier: MIT
#pragma once

#include <CLI/CLI.hpp>

#include <string>

namespace pelmora::cli {

class HelpFormatter : public CLI::Formatter {
 public:
  [[nodiscard]] std::string make_help(const CLI::App* app, std::string name,
                                      CLI::AppFormatMode mode) const override;
};

}  // namespace pelmora::cli
