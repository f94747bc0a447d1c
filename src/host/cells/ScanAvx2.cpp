// Compiled for AVX2: nothing of the standard library may be instantiated here, since the linker could choose
// this copy for processors that lack it.
#include "host/cells/ScanAvx2.h"

#include <immintrin.h>
#include <string.h>

namespace rowlark::cells {
namespace {

__m256i Load(const char* p) { return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p)); }

unsigned Mask(__m256i bytes) { return static_cast<unsigned>(_mm256_movemask_epi8(bytes)); }

const char* Find(const char* begin, const char* end, const char* needle, std::size_t length,
                 std::size_t rare1, std::size_t rare2) {
  if (static_cast<std::size_t>(end - begin) < length) return end;
  const char* const last = end - length;  // the last place where it can start
  const __m256i first = _mm256_set1_epi8(needle[rare1]);
  const __m256i second = _mm256_set1_epi8(needle[rare2]);
  const auto candidates = [=](const char* p) {
    return _mm256_and_si256(_mm256_cmpeq_epi8(Load(p + rare1), first),
                            _mm256_cmpeq_epi8(Load(p + rare2), second));
  };

  while (begin <= last) {
    // Four vectors a round while nothing looks like a match.
    while (last - begin >= 128) {
      const __m256i any = _mm256_or_si256(_mm256_or_si256(candidates(begin), candidates(begin + 32)),
                                          _mm256_or_si256(candidates(begin + 64), candidates(begin + 96)));
      if (!_mm256_testz_si256(any, any)) break;
      begin += 128;
    }
    for (int vector = 0; vector < 4 && begin <= last; ++vector, begin += 32) {
      for (unsigned mask = Mask(candidates(begin)); mask != 0; mask &= mask - 1) {
        const char* const place = begin + _tzcnt_u32(mask);
        if (place > last) return end;
        if (length <= 2 || memcmp(place, needle, length) == 0) return place;
      }
    }
  }
  return end;
}

int32_t Count(const char* begin, const char* end, char byte) {
  const __m256i wanted = _mm256_set1_epi8(byte);
  int32_t count = 0;
  for (; end - begin >= 32; begin += 32)
    count += _mm_popcnt_u32(Mask(_mm256_cmpeq_epi8(Load(begin), wanted)));
  const unsigned rest = (1U << (end - begin)) - 1;
  return count + _mm_popcnt_u32(Mask(_mm256_cmpeq_epi8(Load(begin), wanted)) & rest);
}

}  // namespace

const ScanKernel kAvx2Scan = {Find, Count};

}  // namespace rowlark::cells
