// Resident memory of this process, read from /proc/self/status (Linux), for the checks and the
// benchmark that show large documents are written and read in bounded memory.
#ifndef KX_TESTS_PEAKMEMORY_H
#define KX_TESTS_PEAKMEMORY_H

#include <malloc.h>

#include <cstdio>
#include <cstring>
#include <string>

namespace KxTest {

// The size of a file in bytes, -1 when it cannot be opened.
inline long FileSize(const std::string& path) {
    std::FILE* file = std::fopen(path.c_str(), "rb");
    if (file == nullptr) return -1;
    std::fseek(file, 0, SEEK_END);
    const long size = std::ftell(file);
    std::fclose(file);
    return size;
}

// A "<field> <n> kB" line of /proc/self/status in bytes, -1 when it is missing.
inline long StatusBytes(const char* field) {
    std::FILE* status = std::fopen("/proc/self/status", "r");
    if (status == nullptr) return -1;
    long kb = -1;
    char line[256];
    const size_t length = std::strlen(field);
    while (std::fgets(line, sizeof line, status) != nullptr) {
        if (std::strncmp(line, field, length) == 0 && line[length] == ':') {
            std::sscanf(line + length + 1, "%ld", &kb);
            break;
        }
    }
    std::fclose(status);
    return kb < 0 ? -1 : kb * 1024;
}

inline long ResidentBytes() { return StatusBytes("VmRSS"); }

// Hands the heap's free memory back to the system, then sets the peak resident size to what is
// resident now. False when the kernel refuses the reset.
inline bool ResetPeakResident() {
    malloc_trim(0);
    std::FILE* clear = std::fopen("/proc/self/clear_refs", "w");
    if (clear == nullptr) return false;
    const bool written = std::fputs("5", clear) >= 0;
    return std::fclose(clear) == 0 && written;
}

// The most resident memory `work` adds to what was resident when it started, in bytes; -1 when
// the peak cannot be reset.
template <typename Work>
long PeakResidentAddedBy(Work&& work) {
    if (!ResetPeakResident()) return -1;
    const long start = ResidentBytes();
    work();
    return StatusBytes("VmHWM") - start;
}

}  // namespace KxTest

#endif
