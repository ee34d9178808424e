// kxvalues: reads lines of "<item type> <lexical value>" and prints each value's canonical
// lexical form as the library writes it, or the library's error message.
//
//   kxvalues [file]        (standard input when no file is given)
//
// Blank lines and lines starting with '#' are skipped. The value is everything after the first
// blank; it is read under the collapse whitespace rule, as schema types other than string are.
#include <cstdio>
#include <fstream>
#include <iostream>
#include <string>

#include "KxXmlLib16.h"

using namespace KxXmlLib16;

namespace {

// The item type with the given name ("i4", "datetime" ...), or ItemType_Invalid.
ItemType ItemTypeFromName(const std::string& name) {
    static const char* const names[] = {
        "",          "hexBinary", "base64Binary", "i1",      "i2",      "i4",      "i8",
        "ui1",       "ui2",       "ui4",          "ui8",     "r4",      "r8",      "duration",
        "yearMonth", "monthDay",  "year",         "month",   "day",     "date",    "datetime",
        "time",      "char",      "string",       "boolean", "decimal", "integer"};
    for (int tag = ItemType_hexBinary; tag <= ItemType_integer; ++tag)
        if (name == names[tag]) return static_cast<ItemType>(tag);
    return ItemType_Invalid;
}

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
        const ItemType itemType = ItemTypeFromName(type);
        if (itemType == ItemType_Invalid) {
            std::cout << lineNumber << ": unknown item type [" << type << "]\n";
            ++failures;
            continue;
        }
        try {
            // Parse with the type's parser, then write with its formatter.
            KxVariant parsed;
            parsed.FromString(value, itemType, CWhitespaceUtils::WhitespaceRule_Collapse);
            std::cout << type << " [" << value << "] -> " << parsed.ToString() << "\n";
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
