// SPDX-License-Identifier: MIT
#include "bindings/python/module/errors.h"

#include "bindings/python/module/conversion.h"

#include <pelmora/calibration/failure.h>
#include <pelmora/calibration/stand.h>

#include <cctype>
#include <exception>
#include <string>
#include <utility>

namespace pelmora::python {
namespace {

namespace cal = pelmora::calibration;

// Derived classes first.
const char* classOf(const cal::Failure& failure) {
  if (dynamic_cast<const cal::NotFound*>(&failure)) return "NotFound";
  if (dynamic_cast<const cal::Exists*>(&failure)) return "Exists";
  if (dynamic_cast<const cal::Locked*>(&failure)) return "Locked";
  if (dynamic_cast<const cal::Damaged*>(&failure)) return "Damaged";
  if (dynamic_cast<const cal::Unusable*>(&failure)) return "Unusable";
  if (dynamic_cast<const cal::BadData*>(&failure)) return "BadData";
  if (dynamic_cast<const cal::OutOfRange*>(&failure)) return "OutOfRange";
  if (dynamic_cast<const cal::NoFit*>(&failure)) return "NoFit";
  if (dynamic_cast<const cal::Changed*>(&failure)) return "Changed";
  if (dynamic_cast<const cal::Cancelled*>(&failure)) return "Cancelled";
  return "Error";
}

// With the arguments that settle how a text file is read, or what to do about a range.
std::string remedyOf(const cal::Failure& failure) {
  const auto* range = dynamic_cast<const cal::OutOfRange*>(&failure);
  if (range != nullptr && range->requested() && range->requested()->min < range->requested()->max)
    return failure.remedy() + ": outside=\"whole\" or \"extrapolate\"";
  const auto* text = dynamic_cast<const cal::UnreadableText*>(&failure);
  if (text == nullptr) return failure.remedy();
  switch (text->doubt()) {
    case sheets::SheetError::Doubt::separator:
      return failure.remedy() + ": separator=\",\", \";\" or \"\\t\"";
    case sheets::SheetError::Doubt::decimal: return failure.remedy() + ": decimal=\".\" or \",\"";
    case sheets::SheetError::Doubt::none: break;
  }
  return failure.remedy();
}

// Sentences that end in what to do, as the adapters write them: "... does not exist. Create it".
std::pair<std::string, std::string> withRemedy(const std::string& what, const std::string& remedy) {
  const std::size_t end = what.rfind(". ");
  // Names are quoted, and may hold anything.
  if (!remedy.empty() || end == std::string::npos || end + 2 == what.size() ||
      what.find('\'', end) != std::string::npos)
    return {what, remedy};
  std::string last = what.substr(end + 2);
  if (last.ends_with('.')) last.pop_back();
  last.front() = static_cast<char>(std::tolower(static_cast<unsigned char>(last.front())));
  return {what.substr(0, end), last};
}

void raise(const char* name, const std::string& text, const std::string& where,
           const std::string& toDo) {
  const auto [what, remedy] = withRemedy(text, toDo);
  const py::object type = py::module_::import("pelmora.errors").attr(name);
  const py::object error =
      type(textOf(what), py::arg("where") = textOf(where), py::arg("remedy") = textOf(remedy));
  PyErr_SetObject(type.ptr(), error.ptr());
}

}  // namespace

void translateErrors() {
  py::register_exception_translator([](std::exception_ptr thrown) {
    try {
      if (thrown) std::rethrow_exception(thrown);
    } catch (const cal::Failure& failure) {
      raise(classOf(failure), failure.what(), failure.where(), remedyOf(failure));
    } catch (const Error& error) {
      constexpr std::int32_t outOfMemory = 7;
      if (error.number() == outOfMemory) {
        PyErr_NoMemory();
        return;
      }
      raise("Error", error.what(), "", "");
    }
  });
}

}  // namespace pelmora::python
