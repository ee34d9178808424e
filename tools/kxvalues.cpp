// kxvalues: reads lines of "<item type> <lexical value>" and prints each value's canonical
// lexical form as the library writes it, or the library's error message.
//
//   kxvalues [file]        (standard input when no file is given)
//
// Blank lines and lines starting with '#' are skipped. The value is everything after the first
// blank; it is read under the collapse whitespace rule, as schema types other than string are.
#include <cstdio>
#include <fstream>
#include <functional>
#include <iostream>
#include <map>
#include <string>

#include "KxXmlLib16.h"

using namespace KxXmlLib16;

namespace {

using Rule = CWhitespaceUtils::WhitespaceRule;
using Canonicalizer = std::function<std::string(const std::string&, Rule)>;

// Parse with the type's parser, then write with its formatter.
#define KX_ROUND_TRIP(type) \
    { #type, [](const std::string& text, Rule rule) { \
          return CConversions::type##ToString(CConversions::type##FromString(text, rule)); } }

const std::map<std::string, Canonicalizer>& Canonicalizers() {
    static const std::map<std::string, Canonicalizer> table = {
        KX_ROUND_TRIP(hexBinary), KX_ROUND_TRIP(base64Binary), KX_ROUND_TRIP(i1),
        KX_ROUND_TRIP(i2),        KX_ROUND_TRIP(i4),           KX_ROUND_TRIP(i8),
        KX_ROUND_TRIP(ui1),       KX_ROUND_TRIP(ui2),          KX_ROUND_TRIP(ui4),
        KX_ROUND_TRIP(ui8),       KX_ROUND_TRIP(r4),           KX_ROUND_TRIP(r8),
        KX_ROUND_TRIP(duration),  KX_ROUND_TRIP(yearMonth),    KX_ROUND_TRIP(monthDay),
        KX_ROUND_TRIP(year),      KX_ROUND_TRIP(month),        KX_ROUND_TRIP(day),
        KX_ROUND_TRIP(date),      KX_ROUND_TRIP(datetime),     KX_ROUND_TRIP(time),
        KX_ROUND_TRIP(char),      KX_ROUND_TRIP(string),       KX_ROUND_TRIP(boolean),
        KX_ROUND_TRIP(decimal),   KX_ROUND_TRIP(integer),
    };
    return table;
}

#undef KX_ROUND_TRIP

// Returns the number of lines that failed.
int Process(std::istream& in) {
    int failures = 0;
    std::string line;
    int lineNumber = 0;
    while (std::getline(in, line)) {
        ++lineNumber;
        if (line.empty() || line[0] == '#') continue;
        const size_t blank = line.find(' ');
        const std::string type = line.substr(0, blank);
        const std::string value = blank == std::string::npos ? std::string() : line.substr(blank + 1);
        const auto found = Canonicalizers().find(type);
        if (found == Canonicalizers().end()) {
            std::cout << lineNumber << ": unknown item type [" << type << "]\n";
            ++failures;
            continue;
        }
        try {
            const std::string canonical =
                found->second(value, CWhitespaceUtils::WhitespaceRule_Collapse);
            std::cout << type << " [" << value << "] -> " << canonical << "\n";
        } catch (const CKxException& e) {
            std::cout << type << " [" << value << "] !! " << e.GetFullMessage() << "\n";
            ++failures;
        }
    }
    return failures;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc > 2) {
        std::cerr << "usage: kxvalues [file]\n";
        return 2;
    }
    int failures = 0;
    if (argc == 2) {
        std::ifstream file(argv[1]);
        if (!file) {
            std::cerr << "kxvalues: cannot open " << argv[1] << "\n";
            return 2;
        }
        failures = Process(file);
    } else {
        failures = Process(std::cin);
    }
    std::cout << failures << " value(s) rejected\n";
    return 0;
}
