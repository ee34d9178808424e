// kxxml: binds documents of the order schema (urn:bench:orders, root element Orders) into the
// sample bindings KxOrders::COrders, and converts, validates, round-trips and measures them.
// Run `kxxml --help` for the commands.
//
// Exit status: 0 success; 1 a document that does not bind (a corrupt Fast Infoset file
// included), a round trip that differs, or any other failure of the library; 2 a usage error.
#include <algorithm>
#include <chrono>
#include <clocale>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <string>
#include <vector>

#include "kxxml/Documents.h"

using namespace kxxml;

namespace {

const char kUsage[] =
    "Usage: kxxml <command> [options] <arguments>\n"
    "\n"
    "Reads documents of the order schema (namespace urn:bench:orders, root element Orders)\n"
    "into the sample bindings and writes them back.\n"
    "\n"
    "Commands:\n"
    "  convert IN OUT  Read IN and write it to OUT. The format of OUT comes from its\n"
    "                  extension (.xml, .json, .fi; a further .gz means gzip) or --to.\n"
    "  validate IN     Bind IN; print \"IN: valid (N orders)\", or the first fault with its\n"
    "                  path on one line (exit status 1).\n"
    "  roundtrip IN    Read IN, write it as XML text, read that text again, and compare the\n"
    "                  two objects and the two texts of a second write.\n"
    "  stats IN        Size of IN and time to read it; for XML, XML+gzip, JSON and Fast\n"
    "                  Infoset, the size of the output and the time to write it.\n"
    "\n"
    "Input: gzip- or zlib-compressed input and Fast Infoset are recognised from the bytes;\n"
    "a name ending in .json or .json.gz is read as JSON.\n"
    "\n"
    "Options of convert:\n"
    "  --to xml|json|fi     Output format, whatever the extension of OUT.\n"
    "  --gzip               Compress the output with gzip (implied by a .gz extension).\n"
    "  --zlib               Compress the output with zlib.\n"
    "  --indent             Indent the output (the default).\n"
    "  --no-indent          Write the output without line breaks or indentation.\n"
    "  --standard-json      Escape JSON output as standard JSON does (quotation marks,\n"
    "                       backslashes, control characters) and decode every JSON escape\n"
    "                       of JSON input; without it the library's lenient escaping.\n"
    "\n"
    "  -h, --help           Print this text.\n"
    "\n"
    "Exit status: 0 success; 1 invalid document, differing round trip or other failure;\n"
    "2 usage error.\n";

// A mistake on the command line: reported with a hint to --help, exit status 2.
struct UsageError {
    std::string message;
};

double Milliseconds(std::chrono::steady_clock::duration d) {
    return std::chrono::duration<double, std::milli>(d).count();
}

// ---- Command line ------------------------------------------------------------------------

struct Options {
    std::string command;
    std::vector<std::string> arguments;
    bool help = false;
    bool hasFormat = false;
    Format format = Format::Xml;
    CompressionType compression = CompressionType_None;
    bool indent = true;
    bool standardJson = false;
};

Format ParseFormat(const std::string& value) {
    if (value == "xml") return Format::Xml;
    if (value == "json") return Format::Json;
    if (value == "fi") return Format::FastInfoset;
    throw UsageError{"unknown format [" + value + "] for --to; use xml, json or fi"};
}

void SetCompression(Options& options, CompressionType compression) {
    if (options.compression != CompressionType_None && options.compression != compression)
        throw UsageError{"--gzip and --zlib exclude each other"};
    options.compression = compression;
}

Options ParseCommandLine(const std::vector<std::string>& args) {
    Options options;
    for (size_t i = 0; i < args.size(); ++i) {
        const std::string& arg = args[i];
        if (arg == "-h" || arg == "--help") {
            options.help = true;
        } else if (arg.size() > 1 && arg[0] == '-') {
            const bool isConvert = options.command == "convert";
            if (!isConvert) throw UsageError{"unknown option [" + arg + "]"};
            if (arg == "--to") {
                if (i + 1 == args.size()) throw UsageError{"--to needs a format (xml, json or fi)"};
                options.format = ParseFormat(args[++i]);
                options.hasFormat = true;
            } else if (StartsWith(arg, "--to=")) {
                options.format = ParseFormat(arg.substr(5));
                options.hasFormat = true;
            } else if (arg == "--gzip") {
                SetCompression(options, CompressionType_GZip);
            } else if (arg == "--zlib") {
                SetCompression(options, CompressionType_ZLib);
            } else if (arg == "--indent") {
                options.indent = true;
            } else if (arg == "--no-indent") {
                options.indent = false;
            } else if (arg == "--standard-json") {
                options.standardJson = true;
            } else {
                throw UsageError{"unknown option [" + arg + "]"};
            }
        } else if (options.command.empty()) {
            options.command = arg;
            if (arg != "convert" && arg != "validate" && arg != "roundtrip" && arg != "stats")
                throw UsageError{"unknown command [" + arg + "]"};
        } else {
            options.arguments.push_back(arg);
        }
    }
    return options;
}

void ExpectArguments(const Options& options, size_t count, const char* names) {
    if (options.arguments.size() != count)
        throw UsageError{options.command + " takes " + names};
}

// ---- Commands ----------------------------------------------------------------------------

int Convert(const Options& options) {
    ExpectArguments(options, 2, "IN and OUT");
    const std::string& in = options.arguments[0];
    const std::string& out = options.arguments[1];
    bool gz = false;
    const std::string bare = StripGz(out, &gz);
    Format format = options.format;
    if (!options.hasFormat) {
        if (EndsWith(bare, ".xml"))
            format = Format::Xml;
        else if (EndsWith(bare, ".json"))
            format = Format::Json;
        else if (EndsWith(bare, ".fi"))
            format = Format::FastInfoset;
        else
            throw UsageError{"cannot tell the format of [" + out +
                             "] from its extension; use --to"};
    }
    CompressionType compression = options.compression;
    if (gz && compression == CompressionType_None) compression = CompressionType_GZip;

    CSmartPtr<COrders> orders(new COrders());
    ReadDocument(*orders, in, options.standardJson);
    WriteDocument(*orders, out, format, compression, options.indent, options.standardJson);
    const char* packing = compression == CompressionType_GZip   ? ", gzip"
                          : compression == CompressionType_ZLib ? ", zlib"
                                                                : "";
    std::printf("%s -> %s (%s%s, %ju bytes, %d orders)\n", in.c_str(), out.c_str(),
                FormatName(format), packing,
                static_cast<std::uintmax_t>(std::filesystem::file_size(out)),
                OrderCount(*orders));
    return 0;
}

int Validate(const Options& options) {
    ExpectArguments(options, 1, "IN");
    const std::string& in = options.arguments[0];
    CSmartPtr<COrders> orders(new COrders());
    try {
        ReadDocument(*orders, in);
    } catch (const CKxException& e) {
        // Any failure to bind is the document's fault line, unreadable files included.
        std::fprintf(stderr, "%s: %s\n", in.c_str(), OneLine(e).c_str());
        return 1;
    }
    std::printf("%s: valid (%d orders)\n", in.c_str(), OrderCount(*orders));
    return 0;
}

// The 1-based number of the first line where the texts differ, and that line of each.
void ReportTextDifference(const std::string& a, const std::string& b) {
    size_t at = 0;
    while (at < a.size() && at < b.size() && a[at] == b[at]) ++at;
    const size_t lineStart = a.rfind('\n', at == 0 ? 0 : at - 1);
    const size_t from = lineStart == std::string::npos || at == 0 ? 0 : lineStart + 1;
    const long line = 1 + static_cast<long>(std::count(a.begin(), a.begin() + from, '\n'));
    auto lineOf = [from](const std::string& text) {
        if (from >= text.size()) return std::string("<end of text>");
        return text.substr(from, text.find('\n', from) - from);
    };
    std::fprintf(stderr, "roundtrip: the XML texts differ at line %ld: [%s] then [%s]\n", line,
                 lineOf(a).c_str(), lineOf(b).c_str());
}

int Roundtrip(const Options& options) {
    ExpectArguments(options, 1, "IN");
    CSmartPtr<COrders> first(new COrders());
    ReadDocument(*first, options.arguments[0]);
    const std::string firstText = first->ToXml(true, true, EOLType_LF, WriteContext());
    CSmartPtr<COrders> second(new COrders());
    second->FromXml(firstText.c_str());
    const std::string secondText = second->ToXml(true, true, EOLType_LF, WriteContext());

    const bool sameObjects = *first == *second;
    const bool sameTexts = firstText == secondText;
    if (sameObjects && sameTexts) {
        std::printf("roundtrip: identical (%zu bytes)\n", firstText.size());
        return 0;
    }
    if (!sameObjects) std::fprintf(stderr, "roundtrip: the objects read back differ\n");
    if (!sameTexts) ReportTextDifference(firstText, secondText);
    return 1;
}

int Stats(const Options& options) {
    ExpectArguments(options, 1, "IN");
    const std::string& in = options.arguments[0];
    using Clock = std::chrono::steady_clock;

    CSmartPtr<COrders> orders(new COrders());
    const Clock::time_point readStart = Clock::now();
    ReadDocument(*orders, in);
    const double readMs = Milliseconds(Clock::now() - readStart);
    std::printf("%-13s %10ju bytes  read  %8.1f ms  (%d orders)\n", "input",
                static_cast<std::uintmax_t>(std::filesystem::file_size(in)), readMs,
                OrderCount(*orders));

    struct Row {
        const char* name;
        Format format;
        CompressionType compression;
    };
    const Row rows[] = {{"XML", Format::Xml, CompressionType_None},
                        {"XML+gzip", Format::Xml, CompressionType_GZip},
                        {"JSON", Format::Json, CompressionType_None},
                        {"Fast Infoset", Format::FastInfoset, CompressionType_None}};
    for (const Row& row : rows) {
        const Clock::time_point start = Clock::now();
        const CBinaryData bytes = ToBytes(*orders, row.format, row.compression, true);
        const double ms = Milliseconds(Clock::now() - start);
        std::printf("%-13s %10lu bytes  write %8.1f ms\n", row.name, bytes.GetLength(), ms);
    }
    return 0;
}

int Run(const std::vector<std::string>& args) {
    const Options options = ParseCommandLine(args);
    if (options.help) {
        std::fputs(kUsage, stdout);
        return 0;
    }
    if (options.command.empty()) {
        std::fputs(kUsage, stdout);
        return 2;
    }
    if (options.command == "convert") return Convert(options);
    if (options.command == "validate") return Validate(options);
    if (options.command == "roundtrip") return Roundtrip(options);
    return Stats(options);
}

}  // namespace

int main(int argc, char** argv) {
    // The library hands text to the application in the local code page; a UTF-8 one keeps every
    // character of the document, where the plain C locale would turn non-ASCII into '?'.
    if (std::setlocale(LC_CTYPE, "C.UTF-8") == nullptr) std::setlocale(LC_CTYPE, "");
    try {
        return Run(std::vector<std::string>(argv + 1, argv + argc));
    } catch (const UsageError& e) {
        std::fprintf(stderr, "kxxml: %s (see kxxml --help)\n", e.message.c_str());
    } catch (const CKxException& e) {
        std::fprintf(stderr, "kxxml: %s\n", OneLine(e).c_str());
        return 1;
    } catch (const std::exception& e) {
        std::fprintf(stderr, "kxxml: %s\n", e.what());
        return 1;
    }
    return 2;
}
