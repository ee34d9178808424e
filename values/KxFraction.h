// The fraction-of-a-second text shared by the duration and date-time formatters.
#ifndef KX_KXFRACTION_H
#define KX_KXFRACTION_H

namespace KxXmlLib16 {
namespace KxDetail {

// Longest text WriteFraction can produce: "." and three counters of up to five digits.
constexpr int kMaxFractionText = 16;

// Writes the fraction of a second held as milli-, micro- and nanoseconds at `out` and returns
// the position after it. Each counter is written zero-padded to three digits (a counter above
// 999 gives more digits), up to the last non-zero one, whose trailing zeros are removed (never
// its first digit); the text starts with ".". All three zero: nothing is written.
// 500 ms gives ".5", 250 us alone ".00025", 1 ms 2 us ".001002".
char* WriteFraction(char* out, unsigned short milliSeconds, unsigned short microSeconds,
                    unsigned short nanoSeconds);

}  // namespace KxDetail
}  // namespace KxXmlLib16

#endif
