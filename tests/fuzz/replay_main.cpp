// Runs a fuzz target once over each file named on the command line (or each file of a named
// directory), so that the seed corpus and saved crash inputs replay in every build, with or
// without libFuzzer.
#include <dirent.h>
#include <sys/stat.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

namespace {

bool ReadFile(const std::string& path, std::vector<uint8_t>& bytes) {
    std::FILE* file = std::fopen(path.c_str(), "rb");
    if (file == nullptr) return false;
    bytes.clear();
    uint8_t buffer[4096];
    size_t got;
    while ((got = std::fread(buffer, 1, sizeof buffer, file)) > 0) {
        bytes.insert(bytes.end(), buffer, buffer + got);
    }
    const bool ok = std::ferror(file) == 0;
    std::fclose(file);
    return ok;
}

void Collect(const std::string& path, std::vector<std::string>& files) {
    struct stat status;
    if (stat(path.c_str(), &status) != 0) return;
    if (!S_ISDIR(status.st_mode)) {
        files.push_back(path);
        return;
    }
    DIR* dir = opendir(path.c_str());
    if (dir == nullptr) return;
    while (dirent* entry = readdir(dir)) {
        const std::string name = entry->d_name;
        if (name != "." && name != "..") Collect(path + "/" + name, files);
    }
    closedir(dir);
}

}  // namespace

int main(int argc, char** argv) {
    std::vector<std::string> files;
    for (int i = 1; i < argc; ++i) Collect(argv[i], files);
    if (files.empty()) {
        std::fprintf(stderr, "no input files\n");
        return 1;
    }
    std::vector<uint8_t> bytes;
    for (const std::string& file : files) {
        if (!ReadFile(file, bytes)) {
            std::fprintf(stderr, "cannot read %s\n", file.c_str());
            return 1;
        }
        LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
    }
    std::printf("replayed %zu inputs\n", files.size());
    return 0;
}
