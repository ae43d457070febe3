// What a digital calibration certificate says, as plain values.
// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace pelmora::dcc {

struct Contact {
  std::string name, street, streetNumber, postCode, city, countryCode, email;
};

struct Signatory {
  std::string name, role;
  bool isMain = false;
};

struct Item {
  std::string name, maker, model, serialNumber, customersNumber;
};

// Expanded uncertainties of a column, in its unit.
//
// Shape:  values: one per value of the column; coverageFactors: one for all, or one per value.
struct Uncertainties {
  std::vector<std::string> values, coverageFactors;
  std::string probability;  // a number from 0 to 1, such as 0.9545
};

// Numbers are texts, as the page prints them: the certificate carries the same digits.
struct Column {
  std::string name;
  bool isReference = false;  // the others are a function of it
  std::string unit;          // a symbol of units::knownUnits()
  std::vector<std::string> values;
  std::optional<Uncertainties> uncertainties;
};

struct Result {
  std::string name, description;
  std::vector<Column> columns;  // of equal length
};

struct Method {
  std::string name, description;
};

struct Condition {
  std::string name, unit, value;  // "ambient temperature", "C", "21.4"
};

// Dates: YYYY-MM-DD. Language: ISO 639-1, countries: ISO 3166-1.
struct Certificate {
  std::string number, countryCode, language = "en";
  std::string firstDate, lastDate, issueDate;  // of the calibration; issueDate may be empty
  std::string softwareVersion;
  std::string laboratoryCode;  // of its accreditation; may be empty
  Contact laboratory, customer;
  std::vector<Signatory> signatories;
  Item item;
  std::string title;  // of the measurement
  std::vector<Method> methods;
  std::vector<Condition> conditions;
  std::vector<Result> results;
  std::vector<std::string> statements;  // traceability, conformity, remarks
};

// What is missing or wrong, one clause each: "the city of the customer is missing".
[[nodiscard]] std::vector<std::string> missingFrom(const Certificate& certificate);

}  // namespace pelmora::dcc
