// Flows in service from fitted curves.
// SPDX-License-Identifier: MIT
#include "base/readable_number.h"
#include "calibration/evaluation/fitted_curve_body.h"
#include "calibration/evaluation/meter_state.h"
#include "flow/flow_budget.h"
#include "uncertainty/pair_budget.h"
#include "uncertainty/stand_file.h"

#include <pelmora/calibration/failure.h>
#include <pelmora/calibration/flow.h>

#include <vector>

namespace pelmora::calibration {
namespace {

flow::Service serviceOf(const ServiceReading& reading) {
  flow::Service service;
  service.viscosity = reading.viscosity.value_or(0);
  const tables::MeterState state = meterState(reading.celsius, reading.expansionPerKelvin);
  service.temperatureF = state.temperatureF;
  service.expansion = state.expansion;
  return service;
}

void requireRotor(const FittedCurve& curve) {
  if (curve.body().kind == uncertainty::SeriesKind::rotor) return;
  throw BadData({"this series is a quotient of two rotors: it has no flow of its own", "",
                 "choose the series of a rotor, such as 'Rotor A'"});
}

// A curve at one place, with the budget of its value.
struct Placed {
  double steepness = 0;  // Roshko dy/dRoshko
  bool isExtrapolated = false;
  std::optional<uncertainty::Budget> budget;
  [[nodiscard]] flow::CalibratedStrouhal calibrated() const { return {&*budget, steepness}; }
};

// roshko: in the unit of the curve.
Placed placed(const FittedCurve& curve, double roshko, ReadAs reading,
              const flow::Service& service) {
  EvaluateOptions options{reading, {}, service.temperatureF};
  // The stand did not measure in this fluid: it counts only if nothing better is known.
  if (curve.body().measuredAt.empty()) options.viscosity = service.viscosity;
  return {roshko * curve.slopes({&roshko, 1}).front(),
          !curve.body().isInside(curve.body().settled(roshko)),
          curve.body().budgetAt(roshko, options)};
}

// Over Roshko in Hz/cSt, which frequencies and viscosities give.
flow::StrouhalCurve curveOf(const FittedCurve& curve, ReadAs reading) {
  return [&curve, reading](double hertzPerCentistoke) {
    const double roshko = hertzPerCentistoke * curve.body().hertzPerCentistoke;
    return curve.read({&roshko, 1}, reading).front();
  };
}

// The Roshko number of a flow in the unit of the curve.
double roshkoOf(const FittedCurve& curve, const flow::MeterFlow& flow) {
  return flow.roshko * curve.body().hertzPerCentistoke;
}

uncertainty::StandUncertainty instrumentsOf(const ServiceReading& reading) {
  if (!reading.instruments) return {};
  return uncertainty::readStandUncertainty(reading.instruments->text, reading.instruments->file);
}

// What the instruments contribute if the viscosity comes from the rotors: nothing through the
// viscosity, because no instrument measures it.
uncertainty::StandUncertainty withoutViscosity(uncertainty::StandUncertainty instruments) {
  std::erase_if(instruments.components, [](const uncertainty::Component& each) {
    return each.cause == uncertainty::Cause::viscosity;
  });
  for (uncertainty::Component& each : instruments.components) each.viscosityChange = 0;
  return instruments;
}

uncertainty::OperatingPoint operatingPoint(const ServiceReading& reading,
                                           const flow::Service& service) {
  uncertainty::OperatingPoint at;
  at.frequency = {reading.frequency, &units::unitOf("Hz")};
  at.viscosity = {service.viscosity, &units::unitOf("cSt")};
  return at;
}

Budget publicFlowBudget(const uncertainty::Budget& budget, const FittedCurve& rotor,
                        const ServiceReading& reading) {
  Budget made = publicBudget(budget, rotor.body().hasStand);
  made.isOfFlow = true;
  made.hasInstruments = reading.instruments.has_value();
  return made;
}

RotorFlow rotorOf(const FittedCurve& curve, const flow::MeterFlow& flow, const Placed& at) {
  return {roshkoOf(curve, flow), flow.strouhal, flow.flow, at.isExtrapolated};
}

}  // namespace

ServiceFlow flowOf(const FittedCurve& rotor, const ServiceReading& reading) {
  requireRotor(rotor);
  if (!reading.viscosity)
    throw BadData({"the viscosity is not known", "", "give it, or a fluid and its temperature"});
  const flow::Service service = serviceOf(reading);
  const flow::MeterFlow found =
      flow::volumeFlow(curveOf(rotor, reading.reading), reading.frequency, service);
  const Placed at = placed(rotor, roshkoOf(rotor, found), reading.reading, service);
  ServiceFlow made;
  made.unit = flowUnitOf(rotor.body().strouhalUnit);
  made.viscosity = service.viscosity;
  made.rotor = rotorOf(rotor, found, at);
  made.flow = found.flow;
  if (at.budget) {
    made.budget =
        publicFlowBudget(flow::flowBudget(found.flow, at.calibrated(), instrumentsOf(reading),
                                          operatingPoint(reading, service), service),
                         rotor, reading);
  }
  return made;
}

std::vector<double> flowsOf(const FittedCurve& rotor, std::span<const double> frequency,
                            std::span<const double> viscosity, std::span<const double> fahrenheit,
                            const std::stop_token& stop) {
  requireRotor(rotor);
  if (viscosity.size() != frequency.size() || fahrenheit.size() != frequency.size()) {
    throw BadData({std::to_string(frequency.size()) + " frequencies, " +
                       std::to_string(viscosity.size()) + " viscosities and " +
                       std::to_string(fahrenheit.size()) + " temperatures do not make readings",
                   "", "give each reading one value of each"});
  }
  std::vector<double> flows;
  for (std::size_t i = 0; i < frequency.size(); ++i) {
    if (stop.stop_requested()) throw Cancelled({"computing the flows was cancelled", "", ""});
    const auto strouhal = [&](double hertzPerCentistoke) {
      const double roshko = hertzPerCentistoke * rotor.body().hertzPerCentistoke;
      const double x = rotor.body().settled(roshko);
      if (rotor.body().isInside(x)) return rotor(x);
      throw OutOfRange({"reading " + std::to_string(i) + " (counted from 0) has Roshko " +
                            significantText(roshko, 6) +
                            ", outside the curve, which reaches from " +
                            significantText(rotor.lowestRoshko(), 6) + " to " +
                            significantText(rotor.highestRoshko(), 6),
                        "", "check frequency and viscosity"});
    };
    flows.push_back(
        flow::volumeFlow(strouhal, frequency[i], {viscosity[i], fahrenheit[i], {}}).flow);
  }
  return flows;
}

namespace {

void requireQuotient(const FittedCurve* quotient) {
  if (quotient != nullptr && quotient->body().kind == uncertainty::SeriesKind::quotientAB) return;
  throw BadData({"the viscosity is not known, and there is no series Rotor Sum to compute it from",
                 "", "give the viscosity, or a fluid and its temperature"});
}

double viscosityFrom(const FittedCurve& quotient, const ServiceReading& reading,
                     const flow::Service& service) {
  const double unit = quotient.body().hertzPerCentistoke;
  return flow::viscosityOfQuotient(
      curveOf(quotient, ReadAs::none),
      {quotient.lowestRoshko() / unit, quotient.highestRoshko() / unit}, reading.frequency,
      *reading.frequencyB, service.temperatureF, service.expansion);
}

// The contributions of the instruments and of the viscosity that follows from the rotors; empty if
// the uncertainty of that viscosity is not known.
std::optional<uncertainty::StandUncertainty> withQuotient(
    const uncertainty::StandUncertainty& instruments, const FittedCurve& quotient,
    const ServiceReading& reading, const flow::Service& service) {
  const double roshko = (reading.frequency + *reading.frequencyB) / service.viscosity *
                        service.expansion.roshkoFactor(service.temperatureF) *
                        quotient.body().hertzPerCentistoke;
  const Placed at = placed(quotient, roshko, ReadAs::none, service);
  if (!at.budget) return std::nullopt;
  uncertainty::StandUncertainty all = withoutViscosity(instruments);
  all.components.push_back(flow::viscosityOfQuotientComponent(at.calibrated(), instruments,
                                                              operatingPoint(reading, service)));
  return all;
}

}  // namespace

ServiceFlow flowOf(const FittedCurve& rotorA, const FittedCurve& rotorB,
                   const FittedCurve* quotient, const ServiceReading& reading) {
  requireRotor(rotorA);
  requireRotor(rotorB);
  if (!reading.frequencyB)
    throw BadData({"the frequency of rotor B is missing", "", "give both frequencies"});
  flow::Service service = serviceOf(reading);
  ServiceFlow made;
  made.isViscosityOfQuotient = !reading.viscosity;
  if (made.isViscosityOfQuotient) {
    requireQuotient(quotient);
    service.viscosity = viscosityFrom(*quotient, reading, service);
  }
  const flow::DualFlow found =
      flow::dualFlow(curveOf(rotorA, reading.reading), curveOf(rotorB, reading.reading),
                     reading.frequency, *reading.frequencyB, service);
  const Placed a = placed(rotorA, roshkoOf(rotorA, found.rotorA), reading.reading, service);
  const Placed b = placed(rotorB, roshkoOf(rotorB, found.rotorB), reading.reading, service);
  made.unit = flowUnitOf(rotorA.body().strouhalUnit);
  made.viscosity = service.viscosity;
  made.rotor = rotorOf(rotorA, found.rotorA, a);
  made.rotorB = rotorOf(rotorB, found.rotorB, b);
  made.flow = found.flow;
  // At the viscosity of the quotient, both rotors show the same flow whatever their state.
  if (!made.isViscosityOfQuotient) made.differencePercent = found.differencePercent;
  if (!a.budget || !b.budget) return made;

  std::optional<uncertainty::StandUncertainty> instruments = instrumentsOf(reading);
  if (made.isViscosityOfQuotient)
    instruments = withQuotient(*instruments, *quotient, reading, service);
  if (!instruments) return made;
  const uncertainty::OperatingPoint at = operatingPoint(reading, service);
  const uncertainty::Budget sum =
      uncertainty::pairBudget(a.budget->value + b.budget->value, {&*a.budget, 1}, {&*b.budget, 1},
                              uncertainty::SharedBy::rotors);
  made.budget = publicFlowBudget(
      flow::flowBudget(found.flow, {&sum, a.steepness + b.steepness}, *instruments, at, service),
      rotorA, reading);
  if (made.differencePercent) {
    made.differenceUncertaintyPercent =
        flow::differenceBudget(found, a.calibrated(), b.calibrated(), *instruments, at, service)
            .expanded;
  }
  return made;
}

}  // namespace pelmora::calibration
