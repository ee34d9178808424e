// A user's program: includes the umbrella header only and calls into the installed library.
#include <iostream>

#include "KxXmlLib16.h"

int main() {
    using namespace KxXmlLib16;
    try {
        throw CKxInvalidValueException(FormatString("The value [%s] can not be converted", "x"));
    } catch (const CKxValidationException& e) {
        if (e.GetMessage() != "The value [x] can not be converted") return 1;
    }
    std::cout << "consumer ok\n";
    return 0;
}
