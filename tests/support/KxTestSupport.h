// Shared test helpers: exact checks of the library's exceptions.
#ifndef KX_TEST_SUPPORT_H
#define KX_TEST_SUPPORT_H

#include <gtest/gtest.h>

#include <clocale>
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

// Implements the serialisation hooks of a bindable object as no-ops, for test objects that only
// need to exist (reference counts, variants): class Counted : public KxTest::Inert<CXmlObjectBase>.
template <typename Base>
class Inert : public Base {
public:
    using Base::Base;
    std::string GetNamespace() const override { return std::string(); }
    std::string GetTargetNamespace() const override { return std::string(); }
    void ToXml_Int(KxXmlLib16::CXmlWriter*, bool, const char*,
                   const KxXmlLib16::CSerializationContext&, bool) const override {}
    KxXmlLib16::CXmlElement* FromXml_Int(KxXmlLib16::CXmlElement*, KxXmlLib16::CXmlElement*,
                                         const KxXmlLib16::CSerializationContext&,
                                         bool) override {
        return nullptr;
    }
};

// Decimal text of a 128-bit integer, the reference for big-number arithmetic checks.
inline std::string Int128ToString(__int128 value) {
    if (value == 0) return "0";
    const bool negative = value < 0;
    unsigned __int128 magnitude =
        negative ? static_cast<unsigned __int128>(0) - static_cast<unsigned __int128>(value)
                 : static_cast<unsigned __int128>(value);
    std::string out;
    while (magnitude != 0) {
        out.insert(out.begin(), static_cast<char>('0' + static_cast<int>(magnitude % 10)));
        magnitude /= 10;
    }
    return negative ? "-" + out : out;
}

// Checks all six comparison operators of `a` against `b` for the ordering `expected`
// (negative: a < b, zero: equal, positive: a > b).
template <typename T>
void ExpectOrdering(const T& a, const T& b, int expected) {
    EXPECT_EQ(expected == 0, a == b);
    EXPECT_EQ(expected != 0, a != b);
    EXPECT_EQ(expected < 0, a < b);
    EXPECT_EQ(expected > 0, a > b);
    EXPECT_EQ(expected <= 0, a <= b);
    EXPECT_EQ(expected >= 0, a >= b);
}

// Switches one locale category for the lifetime of the object and restores it afterwards.
class ScopedLocale {
public:
    ScopedLocale(int category, const char* name)
        : m_category(category), m_previous(std::setlocale(category, nullptr)) {
        m_ok = std::setlocale(category, name) != nullptr;
    }
    ~ScopedLocale() { std::setlocale(m_category, m_previous.c_str()); }
    ScopedLocale(const ScopedLocale&) = delete;
    ScopedLocale& operator=(const ScopedLocale&) = delete;
    bool Ok() const { return m_ok; }

private:
    int m_category;
    std::string m_previous;
    bool m_ok;
};

}  // namespace KxTest

#endif
