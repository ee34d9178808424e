#include "KxFraction.h"

#include <charconv>

namespace KxXmlLib16 {
namespace KxDetail {

namespace {

// The counter zero-padded to three digits; larger counters keep all their digits.
char* WritePadded(char* out, unsigned short value) {
    if (value < 10) {
        *out++ = '0';
        *out++ = '0';
    } else if (value < 100) {
        *out++ = '0';
    }
    return std::to_chars(out, out + 5, value).ptr;
}

}  // namespace

char* WriteFraction(char* out, unsigned short milliSeconds, unsigned short microSeconds,
                    unsigned short nanoSeconds) {
    int pieces = nanoSeconds != 0 ? 3 : microSeconds != 0 ? 2 : milliSeconds != 0 ? 1 : 0;
    if (pieces == 0) {
        return out;
    }
    *out++ = '.';
    const unsigned short values[3] = {milliSeconds, microSeconds, nanoSeconds};
    char* lastStart = out;
    for (int i = 0; i < pieces; ++i) {
        lastStart = out;
        out = WritePadded(out, values[i]);
    }
    while (out - lastStart > 1 && out[-1] == '0') {
        --out;
    }
    return out;
}

}  // namespace KxDetail
}  // namespace KxXmlLib16
