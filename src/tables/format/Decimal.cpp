#include "tables/format/Decimal.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace rowlark {
namespace {

constexpr int kSignificant = 15;

}  // namespace

Decimal::Decimal(double value) {
  std::array<char, 32> text{};
  const char* const end = std::to_chars(text.data(), text.data() + text.size(), std::fabs(value),
                                        std::chars_format::scientific, kSignificant - 1)
                              .ptr;
  const char* const exponent = std::find(text.data(), const_cast<char*>(end), 'e');  // d.ddde+xx
  for (const char* c = text.data(); c != exponent; ++c) {
    if (*c != '.') digits_ += *c;
  }
  const char* const sign = exponent + 1;
  std::from_chars(sign + (*sign == '+' ? 1 : 0), end, point_);
  ++point_;
  DropZeros();
}

void Decimal::DropZeros() {
  digits_.erase(digits_.find_last_not_of('0') + 1);
  if (digits_.empty()) point_ = 0;
}

void Decimal::Round(std::size_t decimals) {
  const auto keep = static_cast<std::ptrdiff_t>(decimals) + point_;
  if (keep >= static_cast<std::ptrdiff_t>(digits_.size())) return;
  const bool up = keep >= 0 && digits_[static_cast<std::size_t>(keep)] >= '5';
  digits_.resize(static_cast<std::size_t>(std::max(keep, std::ptrdiff_t{0})));
  if (up) {
    const auto last = digits_.find_last_not_of('9');
    if (last == std::string::npos) {
      digits_ = "1";
      ++point_;
    } else {
      digits_.resize(last + 1);
      ++digits_.back();
    }
  }
  DropZeros();
}

std::string Decimal::Whole() const {
  if (point_ <= 0) return {};
  auto text = digits_.substr(0, static_cast<std::size_t>(point_));
  text.resize(static_cast<std::size_t>(point_), '0');
  return text;
}

std::string Decimal::Decimals(std::size_t count) const {
  auto text = std::string(std::min(static_cast<std::size_t>(std::max(-point_, 0)), count), '0');
  if (const auto from = static_cast<std::size_t>(std::max(point_, 0)); from < digits_.size()) {
    text += digits_.substr(from);
  }
  text.resize(count, '0');
  return text;
}

std::string GeneralText(double value) {
  if (!std::isfinite(value)) return "#NUM!";
  const Decimal number(value);
  const auto& digits = number.Digits();
  const int exponent = number.Exponent();
  std::string text = std::signbit(value) && !number.IsZero() ? "-" : "";
  constexpr int kSmall = -4;
  constexpr int kShort = 9;  // decimals of a small number that is written out
  const auto decimals = static_cast<int>(digits.size()) - exponent - 1;
  if (exponent < kSignificant && (exponent >= kSmall || decimals <= kShort)) {
    const auto whole = number.Whole();
    text += whole.empty() ? "0" : whole;
    if (decimals > 0) text += '.' + number.Decimals(static_cast<std::size_t>(decimals));
    return text;
  }
  text += digits.front();
  if (digits.size() > 1) text += '.' + digits.substr(1);
  const auto power = std::to_string(std::abs(exponent));
  return text + (exponent < 0 ? "E-" : "E+") + (power.size() < 2 ? "0" : "") + power;
}

}  // namespace rowlark
