// SPDX-License-Identifier: MIT
#include "uncertainty/component_size.h"

#include "uncertainty/refusal.h"

namespace pelmora::uncertainty {

double componentSize(const Component& component, const OperatingPoint& at) {
  const units::Unit& unit = *component.standard.unit;
  if (unit.quantity == units::Quantity::relative)
    return units::converted(component.standard.value, unit, units::unitOf("1"));
  if (unit.quantity == units::Quantity::temperature)
    return units::convertedDifference(component.standard.value, unit, units::unitOf("F"));
  const std::optional<units::Measure>& value = component.cause == Cause::flow        ? at.flow
                                               : component.cause == Cause::viscosity ? at.viscosity
                                                                                     : at.frequency;
  if (!value || !(value->value > 0)) {
    refuse("the uncertainty of the " + std::string(causeName(component.cause)) + " is stated in " +
               std::string(unit.symbol) + ", and its value is not known here",
           "state the uncertainty in %, give the " +
               std::string(units::quantityName(unit.quantity)) +
               ", or record the units of what the stand read");
  }
  return units::convertedDifference(component.standard.value, unit, *value->unit) / value->value;
}

}  // namespace pelmora::uncertainty
