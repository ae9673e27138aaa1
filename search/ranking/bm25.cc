// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/ranking/bm25.h"

#include <algorithm>
#include <cmath>

namespace kestan::search {

double Idf(double document_frequency, double documents) {
  const double without = std::max(documents - document_frequency, 0.0);
  return std::log(1 + (without + 0.5) / (document_frequency + 0.5));
}

double IdfExponent(std::size_t clauses) {
  constexpr double kFewClauses = 20;
  constexpr double kGrowth = 0.25;
  constexpr double kGreatest = 1.5;
  const double times = static_cast<double>(clauses) / kFewClauses;
  return times <= 1 ? 1 : std::min(kGreatest, 1 + kGrowth * std::log2(times));
}

double Bm25Score(double idf, double tf, double relative_length, const Bm25Parameters& parameters) {
  const auto [k1, b] = parameters;
  const double length_norm = 1 - b + b * relative_length;
  return idf * tf * (k1 + 1) / (tf + k1 * length_norm);
}

}  // namespace kestan::search
