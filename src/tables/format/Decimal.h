// A number in decimal, as a spreadsheet counts: its first 15 significant digits, and halves rounded away from
// zero. So 1.005 is a half although the nearest binary number is a little less.
#pragma once

#include <cstddef>
#include <string>

namespace rowlark {

class Decimal {
 public:
  // The size of a finite number; signs are the caller's.
  explicit Decimal(double value);

  bool IsZero() const { return digits_.empty(); }
  // Of the first digit: 0 for 1 to 9.99, -1 for 0.1; 0 for zero.
  int Exponent() const { return IsZero() ? 0 : point_ - 1; }
  // Times so many powers of ten.
  void Scale(int powers) { point_ += IsZero() ? 0 : powers; }
  // To so many decimals, halves up.
  void Round(std::size_t decimals);

  // The digits before the point, without zeros in front: empty below 1.
  std::string Whole() const;
  // So many digits behind the point; what lies further back is cut off.
  std::string Decimals(std::size_t count) const;
  // All digits, without zeros at the end.
  const std::string& Digits() const { return digits_; }

 private:
  void DropZeros();

  std::string digits_;  // neither the first nor the last one is 0
  int point_ = 0;       // how many of them stand before the point
};

// As a cell without a format shows a number: up to 15 digits, with an exponent where it is very large or
// small.
std::string GeneralText(double value);

}  // namespace rowlark
