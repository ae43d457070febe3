// SPDX-License-Identifier: MIT
#include "bindings/python/module/pickling.h"

#include "bindings/python/module/byte_archive.h"

#include <bit>
#include <concepts>
#include <optional>
#include <type_traits>
#include <utility>
#include <vector>

namespace pelmora {

// Each struct is taken apart completely: a member that is added to it later does not compile until
// it is added here.
template <class T, class S>
concept Either = std::same_as<std::remove_const_t<T>, S>;

template <class Archive>
void exchange(Archive& archive, Either<FitParameter> auto& value) {
  auto& [name, number, error] = value;
  archive(name, number, error);
}

template <class Archive>
void exchange(Archive& archive, Either<FitStatistics> auto& value) {
  auto& [observations, iterations, standardError, r2, adjusted, regression, residual] = value;
  archive(observations, iterations, standardError, r2, adjusted, regression, residual);
}

template <class Archive>
void exchange(Archive& archive, Either<EquationOutcome> auto& value) {
  auto& [name, expression, verdict, reason, statistics, parameters, linear, covariance, aicc, bic,
         worst, worstX, predicted] = value;
  archive(name, expression, verdict, reason, statistics, parameters, linear, covariance, aicc, bic,
          worst, worstX, predicted);
}

template <class Archive>
void exchange(Archive& archive, Either<CurveWarning> auto& value) {
  auto& [kind, from, to, percent, text, measure, points] = value;
  archive(kind, from, to, percent, text, measure, points);
}

template <class Archive>
void exchange(Archive& archive, Either<FitOutcome> auto& value) {
  auto& [equations, chosen, confidence, prediction, warnings] = value;
  archive(equations, chosen, confidence, prediction, warnings);
}

namespace calibration {

template <class Archive>
void exchange(Archive& archive, Either<Meter> auto& value) {
  auto& [serial, adjusted, number, id] = value;
  archive(serial, adjusted, number, id);
}

// The text of the file; the built-in equations have none.
template <class Archive>
void exchange(Archive& archive, Either<EquationList> auto& value) {
  std::optional<std::string> text = value.text();
  archive(text);
  if constexpr (!std::is_const_v<std::remove_reference_t<decltype(value)>>)
    value = text ? EquationList::parse(*text, "the pickle") : EquationList();
}

template <class Archive>
void exchange(Archive& archive, Either<FitSettings> auto& value) {
  auto& [min, max, fitMin, fitMax, points, spacing, band, ratio, inverted, mergeBand, cuts, ignore,
         choice, outside, equations, only, without, maxOrder] = value;
  archive(min, max, fitMin, fitMax, points, spacing, band, ratio, inverted, mergeBand, cuts, ignore,
          choice, outside, equations, only, without, maxOrder);
}

template <class Archive>
void exchange(Archive& archive, Either<CutPoint> auto& value) {
  auto& [part, number, roshko, strouhal, off] = value;
  archive(part, number, roshko, strouhal, off);
}

template <class Archive>
void exchange(Archive& archive, Either<PointPlace> auto& value) {
  auto& [part, number] = value;
  archive(part, number);
}

template <class Archive>
void exchange(Archive& archive, Either<JudgedPoint> auto& value) {
  auto& [part, number, roshko, strouhal, use, residual, leftOut, leftOutSd] = value;
  archive(part, number, roshko, strouhal, use, residual, leftOut, leftOutSd);
}

template <class Archive>
void exchange(Archive& archive, Either<ReferenceValue> auto& value) {
  auto& [roshko, strouhal, curveSd, newPointSd] = value;
  archive(roshko, strouhal, curveSd, newPointSd);
}

template <class Archive>
void exchange(Archive& archive, Either<Soundness> auto& value) {
  auto& [isJudged, isSound, roshko, departure, allowed, why] = value;
  archive(isJudged, isSound, roshko, departure, allowed, why);
}

template <class Archive>
void exchange(Archive& archive, Either<Trust> auto& value) {
  // The reference curve itself stays behind: whoever needs it finds it again from the points.
  auto& [isRelative, points, flows, length, noiseHigh, noiseLow, judged, table, equations,
         reference] = value;
  archive(isRelative, points, flows, length, noiseHigh, noiseLow, judged, table, equations);
}

template <class Archive>
void exchange(Archive& archive, Either<Fit> auto& value) {
  auto& [meter, series, seriesID, basis, fingerprint, settings, min, max, isWhole, rawPoints,
         merged, places, cut, fitted, curve, outcome, trust, trouble, report] = value;
  archive(meter, series, seriesID, basis, fingerprint, settings, min, max, isWhole, rawPoints,
          merged, places, cut, fitted, curve, outcome, trust, trouble, report);
}

template <class Archive>
void exchange(Archive& archive, Either<StandStatement> auto& value) {
  auto& [text, file, storedAt, userName] = value;
  archive(text, file, storedAt, userName);
}

template <class Archive>
void exchange(Archive& archive, Either<CurvePoint> auto& value) {
  auto& [roshko, strouhal, confidence, prediction] = value;
  archive(roshko, strouhal, confidence, prediction);
}

}  // namespace calibration

namespace python {
namespace {

namespace cal = pelmora::calibration;

// What the bytes mean depends on these.
std::string makerOf(const char* what) {
  return std::string(what) + " of pelmora " PELMORA_VERSION + ", " +
         std::to_string(8 * sizeof(std::size_t)) +
         (std::endian::native == std::endian::little ? " bits" : " bits, big-endian");
}

ByteReader readerOf(std::string_view bytes, const char* what) {
  ByteReader reader(bytes);
  std::string maker;
  reader(maker);
  if (maker == makerOf(what)) return reader;
  throw cal::BadData({"the pickle is a " + maker + ", which is not a " + makerOf(what), "pickle",
                      "read it with the version and on the kind of machine that wrote it, or make "
                      "the fit again"});
}

}  // namespace

std::string bytesOf(const FitResult& fit) {
  ByteWriter writer;
  writer(makerOf("fit"), *fit);
  return writer.bytes();
}

FitResult fitFrom(std::string_view bytes) {
  ByteReader reader = readerOf(bytes, "fit");
  cal::Fit fit;
  reader(fit);
  return FitResult(std::move(fit));
}

std::string bytesOf(const CurveHandle& curve) {
  ByteWriter writer;
  writer(makerOf("curve"), curve.fit().has_value());
  if (curve.fit()) {
    writer(**curve.fit(), curve.statement());
  } else {
    writer(curve.table().points(), curve.series());
  }
  return writer.bytes();
}

CurveHandle curveFrom(std::string_view bytes) {
  ByteReader reader = readerOf(bytes, "curve");
  bool hasFit = false;
  reader(hasFit);
  if (hasFit) {
    cal::Fit fit;
    std::optional<cal::StandStatement> statement;
    reader(fit, statement);
    return CurveHandle(FitResult(std::move(fit)), std::move(statement));
  }
  std::vector<cal::CurvePoint> points;
  std::string series;
  reader(points, series);
  return {cal::Curve(std::move(points)), std::move(series)};
}

}  // namespace python
}  // namespace pelmora
