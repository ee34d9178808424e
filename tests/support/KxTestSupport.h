// Shared test helpers: exact checks of the library's exceptions.
#ifndef KX_TEST_SUPPORT_H
#define KX_TEST_SUPPORT_H

#include <gtest/gtest.h>

#include <string>
#include <typeinfo>

#include "KxXmlLib16.h"

namespace KxTest {

// Runs `fn` and checks that it throws exactly `Expected` (not a subclass, not a base) with the
// message `message`. Use as: ExpectKxError<CKxInvalidValueException>([&] { ... }, "text");
template <typename Expected, typename Fn>
void ExpectKxError(Fn&& fn, const std::string& message) {
    try {
        fn();
    } catch (const KxXmlLib16::CKxException& e) {
        EXPECT_EQ(typeid(Expected), typeid(e))
            << "thrown: " << typeid(e).name() << " with message: " << e.GetMessage();
        EXPECT_EQ(message, e.GetMessage());
        return;
    } catch (const std::exception& e) {
        ADD_FAILURE() << "std::exception instead of a library exception: " << e.what();
        return;
    }
    ADD_FAILURE() << "nothing was thrown; expected: " << message;
}

}  // namespace KxTest

#endif
