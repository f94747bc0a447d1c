// Places and lengths, each in its unit. What is told in different units does not mix: it does not compile.
// Pixels are those of the platform, in types of its own.
#pragma once

#include <cstdint>

namespace rowlark::controls {

template <class Unit>
struct PointIn {
  int32_t x = 0;
  int32_t y = 0;
  friend bool operator==(const PointIn&, const PointIn&) = default;
};

template <class Unit>
struct SizeIn {
  int32_t width = 0;
  int32_t height = 0;
  friend bool operator==(const SizeIn&, const SizeIn&) = default;
};

template <class Unit>
struct RectIn {
  int32_t left = 0;
  int32_t top = 0;
  int32_t width = 0;
  int32_t height = 0;
  friend bool operator==(const RectIn&, const RectIn&) = default;
};

// What a layout counts in: a dialog unit where windows are native, a cell of a terminal. A form is on one
// screen at a time.
struct ScreenUnit;
using Point = PointIn<ScreenUnit>;
using Size = SizeIn<ScreenUnit>;
using Rect = RectIn<ScreenUnit>;

// What forms are placed on the screen in, whatever its resolution: the twentieth part of a point.
struct Twip;
using TwipPoint = PointIn<Twip>;
using TwipSize = SizeIn<Twip>;
using TwipRect = RectIn<Twip>;
inline constexpr int32_t kTwipsPerPoint = 20;
inline constexpr int32_t kTwipsPerInch = 72 * kTwipsPerPoint;

}  // namespace rowlark::controls
