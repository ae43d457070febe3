// SPDX-License-Identifier: MIT
#include "curves/curve_evaluation.h"

#include <utility>

namespace pelmora::calibration {
namespace {

std::vector<CurvePoint> pointsOf(const PointArray& table) {
  std::vector<CurvePoint> points(table.size());
  for (std::size_t i = 0; i < points.size(); ++i) {
    points[i].roshko = table(i, 0);
    points[i].strouhal = table(i, 1);
  }
  return points;
}

}  // namespace

Curve::Curve(std::vector<CurvePoint> points) : points_(std::move(points)) { requireTable(points_); }

Curve::Curve(const PointArray& table) : Curve(pointsOf(table)) {}

PointArray Curve::table() const {
  PointArray table(points_.size());
  for (std::size_t i = 0; i < points_.size(); ++i) {
    table(i, 0) = points_[i].roshko;
    table(i, 1) = points_[i].strouhal;
  }
  return table;
}

CurveValue Curve::operator()(double roshko) const { return strouhalAt(points_, roshko); }

CurveValue Curve::inverse(double strouhal) const { return roshkoAt(points_, strouhal); }

}  // namespace pelmora::calibration
