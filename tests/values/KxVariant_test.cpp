#include <functional>
#include <initializer_list>
#include <optional>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "KxTestSupport.h"
#include "KxXmlLib16.h"

namespace KxXmlLib16 {
// No public operation produces a tag above 28; the tests reach it through the storage.
class KxVariantTestPeer {
public:
    static void SetTag(KxVariant& v, unsigned tag) { v.m_type = tag; }
};
}  // namespace KxXmlLib16

namespace {

using namespace KxXmlLib16;
using KxTest::ExpectKxError;
using V = KxVariant;
using Setter = std::function<void(V&)>;
using Check = std::function<void(const V&)>;
const CWhitespaceUtils::WhitespaceRule kCollapse = CWhitespaceUtils::WhitespaceRule_Collapse;

CBinaryData Bytes(std::initializer_list<unsigned char> bytes) {
    const std::vector<unsigned char> data(bytes);
    return CBinaryData(data.data(), static_cast<unsigned long>(data.size()), false);
}

CDateTime Dt(CDateTime::DateTimeType kind, int y, unsigned mo, unsigned d, unsigned h = 0,
             unsigned mi = 0, unsigned s = 0) {
    return CDateTime(kind, y, mo, d, h, mi, s);
}

CDateTime ZonedDateTime() {
    CDateTime value(CDateTime::dt_dateTime, 2024, 2, 29, 13, 5, 9, 500);
    value.SetTimeZone(0);
    return value;
}

std::string Print(const V& v) {
    std::ostringstream out;
    out << v;
    return out.str();
}

struct TagCase { ItemType tag; const char* name; const char* text; Setter set; Check get; };

// A row whose value goes in through `set` and must come back equal through `get`.
template <typename T, typename A, typename R>
TagCase Row(ItemType tag, const char* name, const char* text, void (V::*set)(A),
            R (V::*get)() const, T value) {
    return {tag, name, text, [=](V& v) { (v.*set)(value); },
            [=](const V& v) { EXPECT_EQ(static_cast<R>(value), (v.*get)()); }};
}

// One row per tag: the value reads back, formats, names its type and parses back.
TEST(KxVariant, EveryTagRoundTripsThroughSetterGetterAndText) {
    const CBinaryData bin = Bytes({0x00, 0xFF, 0x10});
    const CDateTimeSpan span(1, 2, 3, 4, 5, 6, 500, 0, 0);
    const TagCase cases[] = {
        Row(ItemType_hexBinary, "hexBinary", "00FF10", &V::SetHexBinary, &V::GetHexBinary, bin),
        Row(ItemType_base64Binary, "base64Binary", "AP8Q", &V::SetBase64Binary,
            &V::GetBase64Binary, bin),
        Row(ItemType_i1, "i1", "-5", &V::SetI1, &V::GetI1, -5),
        Row(ItemType_i2, "i2", "-30000", &V::SetI2, &V::GetI2, -30000),
        Row(ItemType_i4, "i4", "3000000000", &V::SetI4, &V::GetI4, 3000000000L),
        Row(ItemType_i8, "i8", "-9000000000000000000", &V::SetI8, &V::GetI8,
            -9000000000000000000LL),
        Row(ItemType_ui1, "ui1", "200", &V::SetUI1, &V::GetUI1, 200),
        Row(ItemType_ui2, "ui2", "65000", &V::SetUI2, &V::GetUI2, 65000),
        Row(ItemType_ui4, "ui4", "4000000000", &V::SetUI4, &V::GetUI4, 4000000000UL),
        Row(ItemType_ui8, "ui8", "18446744073709551615", &V::SetUI8, &V::GetUI8, ~0ULL),
        Row(ItemType_r4, "r4", "0.5", &V::SetR4, &V::GetR4, 0.5f),
        Row(ItemType_r8, "r8", "0.1", &V::SetR8, &V::GetR8, 0.1),
        // Equal durations may differ in their fields: the text is compared.
        {ItemType_duration, "duration", "P1Y2M3DT4H5M6.5S", [&](V& v) { v.SetDuration(span); },
         [&](const V& v) { EXPECT_EQ(span.ToString(), v.GetDuration().ToString()); }},
        Row(ItemType_yearMonth, "yearMonth", "2024-02", &V::SetYearMonth, &V::GetYearMonth,
            Dt(CDateTime::dt_gYearMonth, 2024, 2, 1)),
        Row(ItemType_monthDay, "monthDay", "--12-25", &V::SetMonthDay, &V::GetMonthDay,
            Dt(CDateTime::dt_gMonthDay, 1972, 12, 25)),
        Row(ItemType_year, "year", "2024", &V::SetYear, &V::GetYear, 2024),
        Row(ItemType_month, "month", "--07", &V::SetMonth, &V::GetMonth, 7),
        Row(ItemType_day, "day", "---05", &V::SetDay, &V::GetDay, 5),
        Row(ItemType_date, "date", "2024-02-29", &V::SetDate, &V::GetDate,
            Dt(CDateTime::dt_date, 2024, 2, 29)),
        Row(ItemType_datetime, "datetime", "2024-02-29T13:05:09.5Z", &V::SetDateTime,
            &V::GetDateTime, ZonedDateTime()),
        Row(ItemType_time, "time", "13:05:09", &V::SetTime, &V::GetTime,
            Dt(CDateTime::dt_time, 1, 1, 1, 13, 5, 9)),
        Row(ItemType_char, "char", "x", &V::SetChar, &V::GetChar, 'x'),
        Row(ItemType_string, "string", "hello world", &V::SetString, &V::GetString,
            std::string("hello world")),
        Row(ItemType_boolean, "boolean", "true", &V::SetBoolean, &V::GetBoolean, true),
        Row(ItemType_decimal, "decimal", "-12.345", &V::SetDecimal, &V::GetDecimal,
            CDecimal("-12.345")),
        Row(ItemType_integer, "integer", "123456789012345678901234567890", &V::SetInteger,
            &V::GetInteger, CBigInteger("123456789012345678901234567890")),
    };
    int expectedTag = ItemType_hexBinary;
    for (const TagCase& row : cases) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(expectedTag++, row.tag) << "one row per tag, in order";
        V v;
        v.SetNil();  // every setter clears the mark
        row.set(v);
        EXPECT_EQ(row.tag, v.GetItemType());
        EXPECT_FALSE(v.IsNil());
        EXPECT_STREQ(row.name, v.GetType());
        EXPECT_EQ(row.text, v.ToString(nullptr));
        EXPECT_EQ(std::string(row.name) + ":" + row.text, Print(v));
        row.get(v);
        V parsed;
        parsed.FromString(row.text, row.tag, kCollapse);
        EXPECT_EQ(row.tag, parsed.GetItemType());
        row.get(parsed);
    }
    EXPECT_EQ(ItemType_XmlObject, expectedTag);
}

TEST(KxVariant, FormatReachesOnlyTheFloatAndDecimalFormatters) {
    struct Case { const char* format; Setter set; const char* text; };
    const Case cases[] = {
        {"%.2f", [](V& v) { v.SetR8(3.14159); }, "3.14"},
        {"%.3f", [](V& v) { v.SetR4(0.5f); }, "0.500"}, {"", [](V& v) { v.SetR8(0.1); }, "0.1"},
        {"2", [](V& v) { v.SetDecimal(CDecimal("2.345")); }, "2.35"},
        {"%.2f", [](V& v) { v.SetI4(5); }, "5"}, {"%.2f", [](V& v) { v.SetString("%d"); }, "%d"},
    };
    for (const Case& row : cases) {
        V v;
        row.set(v);
        SCOPED_TRACE(Print(v));
        EXPECT_EQ(row.text, v.ToString(row.format));
    }
}

// One variant walks through the nil and invalid states; each step checks the whole state.
TEST(KxVariant, NilMarkStaysApartFromTheTag) {
    struct Step { Setter apply; bool valid; bool nil; ItemType tag; const char* printed; };
    const Step steps[] = {
        {[](V&) {}, false, false, ItemType_Invalid, "invalid"},
        {[](V& v) { v.SetNil(); }, true, true, ItemType_Invalid, "nil(invalid)"},
        {[](V& v) { v.Clear(); }, true, true, ItemType_Invalid, "nil(invalid)"},  // tag 0 keeps
        {[](V& v) { v.SetInvalid(); }, true, true, ItemType_Invalid, "nil(invalid)"},
        {[](V& v) { v.SetString("abc"); }, true, false, ItemType_string, "string:abc"},
        {[](V& v) { v.SetNil(); }, true, true, ItemType_string, "nil(string)"},
        {[](V& v) { v.Clear(); }, false, false, ItemType_Invalid, "invalid"},
        {[](V& v) { v.SetI4(5), v.SetNil(); }, true, true, ItemType_i4, "nil(i4)"},
        {[](V& v) { v.SetI4(7); }, true, false, ItemType_i4, "i4:7"},
        {[](V& v) { v.SetInvalid(); }, false, false, ItemType_Invalid, "invalid"},
    };
    V v;
    int index = 0;
    for (const Step& step : steps) {
        SCOPED_TRACE(index++);
        step.apply(v);
        EXPECT_EQ(step.valid, v.IsValid());
        EXPECT_EQ(step.nil, v.IsNil());
        EXPECT_EQ(step.tag, v.GetItemType());
        EXPECT_EQ(step.printed, Print(v));
    }
}

// Getters never check the tag: inline getters reinterpret the bytes, heap getters of another
// class (or of a nil variant) give a default value.
TEST(KxVariant, GettersReadAnyTagWithoutFailing) {
    const CDateTime date = Dt(CDateTime::dt_date, 2001, 2, 3);
    struct Case { Setter set; Check read; };
    const Case cases[] = {
        {[](V& v) { v.SetI4(0x0102030405L); },
         [](const V& v) {
             EXPECT_EQ(0x05, v.GetI1());
             EXPECT_EQ(0x0405, v.GetI2());
         }},
        {[](V& v) { v.SetI1(-1); }, [](const V& v) { EXPECT_EQ(255, v.GetI4()); }},
        {[](V& v) { v.SetR8(1.0); },
         [](const V& v) { EXPECT_EQ(0x3FF0000000000000ULL, v.GetUI8()); }},
        {[](V& v) { v.SetI4(256); }, [](const V& v) { EXPECT_FALSE(v.GetBoolean()); }},
        {[](V& v) { v.SetI4(5); }, [](const V& v) { EXPECT_TRUE(v.GetBoolean()); }},
        {[](V& v) { v.SetI4(5); },
         [](const V& v) {
             EXPECT_EQ("", v.GetString());
             EXPECT_EQ(CDateTime(), v.GetDateTime());
             EXPECT_EQ(0u, v.GetHexBinary().GetLength());
             EXPECT_EQ(nullptr, v.GetXmlObject());
             EXPECT_EQ(nullptr, v.GetXmlCollection());
         }},
        {[](V& v) { v.SetString("12"); }, [](const V& v) { EXPECT_EQ(0, v.GetInteger()); }},
        {[](V& v) { v.SetDecimal(CDecimal("9.5")), v.SetNil(); },
         [](const V& v) {
             EXPECT_EQ(CDecimal(), v.GetDecimal());
             EXPECT_EQ("0", v.ToString());
         }},
        {[](V& v) { v.SetHexBinary(Bytes({7})); },
         [](const V& v) { EXPECT_EQ(Bytes({7}), v.GetBase64Binary()); }},
        {[&](V& v) { v.SetDate(date); },
         [&](const V& v) {
             EXPECT_EQ(date, v.GetTime());
             EXPECT_EQ(CDateTime::dt_date, v.GetMonthDay().GetType());
         }},
        {[](V& v) { v.SetXmlObject(nullptr); },
         [](const V& v) {
             EXPECT_EQ(nullptr, v.GetXmlObject());
             EXPECT_EQ("object:null", Print(v));
         }},
    };
    for (const Case& row : cases) {
        V v;
        row.set(v);
        SCOPED_TRACE(Print(v));
        row.read(v);
        row.read(V(v));
    }
}

TEST(KxVariant, FromStringFailuresLeaveTheVariantAsItWas) {
    struct Case {
        const char* text;
        int type;
        int rule;
        bool parseError;  // CKxInvalidValueException, else plain CKxException
        const char* message;
    };
    const Case cases[] = {
        {"abc", ItemType_i4, 3, true, "The value [abc] can not be converted to a i4"},
        {"1.2.3", ItemType_decimal, 3, true, "The value [1.2.3] is not a valid decimal"},
        {"2024-13-01", ItemType_date, 3, true, "The value [2024-13-01] is not a valid xs:date"},
        {"ABC", ItemType_hexBinary, 3, false, "Invalid length in hex string"},
        {"1", ItemType_i4, 9, false, "Unknown WhitespaceRule"},
        // The message shows the variant's own tag (23), not the requested type.
        {"1", ItemType_Invalid, 3, false, "Invalid Type 23 to convert to string"},
        {"1", ItemType_XmlObject, 3, false, "Invalid Type 23 to convert to string"},
        {"1", 99, 3, false, "Invalid Type 23 to convert to string"},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.message);
        V v;
        v.SetString("keep");
        auto parse = [&] {
            v.FromString(row.text, static_cast<ItemType>(row.type),
                         static_cast<CWhitespaceUtils::WhitespaceRule>(row.rule));
        };
        if (row.parseError)
            ExpectKxError<CKxInvalidValueException>(parse, row.message);
        else
            ExpectKxError<CKxException>(parse, row.message);
        EXPECT_EQ("string:keep", Print(v));
    }
    V v;
    v.SetString("old");
    v.SetNil();
    v.FromString(" 1e3 ", ItemType_r8, kCollapse);
    EXPECT_EQ("r8:1000", Print(v));
}

// A copy, a copy assigned over another value and a moved copy keep value A (parsed) while the
// original is overwritten in place with B (through its setter) and then made nil.
TEST(KxVariant, CopiesAreIndependentForEveryHeapType) {
    struct Case { ItemType typeA; const char* textA; Setter setB; };
    const Case cases[] = {
        {ItemType_hexBinary, "0102", [](V& v) { v.SetHexBinary(Bytes({0xFF})); }},
        {ItemType_duration, "P1D", [](V& v) { v.SetDuration(CDateTimeSpan(2, 0, 0)); }},
        {ItemType_date, "2001-02-03",
         [](V& v) { v.SetTime(Dt(CDateTime::dt_time, 1, 1, 1, 4, 5, 6)); }},
        {ItemType_datetime, "2024-02-29T13:05:09.5Z",
         [](V& v) { v.SetDate(Dt(CDateTime::dt_date, 2001, 2, 3)); }},
        {ItemType_string, "first", [](V& v) { v.SetString("second"); }},
        {ItemType_decimal, "1.5", [](V& v) { v.SetDecimal(CDecimal("-2")); }},
        {ItemType_integer, "99999999999999999999", [](V& v) { v.SetInteger(CBigInteger(3)); }},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.textA);
        V original;
        original.FromString(row.textA, row.typeA, kCollapse);
        V copied(original);
        V assigned;
        row.setB(assigned);
        assigned = original;
        V temporary(original);
        V moved(std::move(temporary));
        EXPECT_FALSE(temporary.IsValid());  // NOLINT(bugprone-use-after-move): documented
        row.setB(original);
        EXPECT_NE(row.textA, original.ToString());
        original.SetNil();
        for (const V* v : {&copied, &assigned, &moved}) {
            EXPECT_FALSE(v->IsNil());
            EXPECT_EQ(row.textA, v->ToString());
        }
        V nilCopy;
        nilCopy = original;
        EXPECT_EQ(Print(original), Print(nilCopy));
    }
    V v;
    v.SetHexBinary(Bytes({1, 2}));
    CBinaryData out = v.GetHexBinary();  // shares the bytes until written
    out[0] = 0x77;
    EXPECT_EQ("0102", v.ToString());
}

TEST(KxVariant, BadTagsThrowTheirMessages) {
    struct Case { Setter set; int tag; };
    const Case cases[] = {
        {[](V&) {}, 0}, {[](V& v) { v.SetNil(); }, 0}, {[](V& v) { v.SetXmlObject(nullptr); }, 27},
        {[](V& v) { v.SetXmlCollection(nullptr); }, 28},
        {[](V& v) { KxVariantTestPeer::SetTag(v, 99); }, 99},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.tag);
        V v;
        row.set(v);
        const std::string number = std::to_string(row.tag);
        ExpectKxError<CKxException>([&] { v.GetType(); }, "Invalid Type " + number);
        ExpectKxError<CKxException>([&] { v.ToString("%.2f"); },
                                    "Invalid Type " + number + " to convert to string");
    }
    V unknown;
    KxVariantTestPeer::SetTag(unknown, 29);
    EXPECT_EQ("unknown(29)", Print(unknown));
    V target;
    target.SetString("keep");
    ExpectKxError<CKxException>([&] { target = unknown; }, "Unknown Type");
    ExpectKxError<CKxException>([&] { V copy(unknown); }, "Unknown Type");
    EXPECT_EQ("string:keep", Print(target));
}

// Count their destructions, so a test sees an object die exactly once.
class CountingObject : public KxTest::Inert<CXmlObjectBase> {
public:
    explicit CountingObject(int& destroyed) : m_destroyed(destroyed) {}
    ~CountingObject() override { ++m_destroyed; }
    CXmlObjectBase* Clone() const override { return new CountingObject(m_destroyed); }

private:
    int& m_destroyed;
};

class CountingCollection : public KxTest::Inert<CXmlCollectionBase> {
public:
    explicit CountingCollection(int& destroyed) : m_destroyed(destroyed) {}
    ~CountingCollection() override { ++m_destroyed; }
    CXmlObjectBase* Clone() const override { return new CountingCollection(m_destroyed); }
    int GetCount() const override { return 0; }

private:
    int& m_destroyed;
};

// The object under test is held by the test and stored in `v` by `put` (SetXmlObject or
// SetXmlCollection); `other` holds another object. Each path acts on the scene, the count is
// read while the scene lives, and afterwards only the test's reference may be left.
struct Scene {
    std::function<void(V&)> put;
    V v, other;
    std::optional<V> extra;
    CXmlObjectBase* got = nullptr;
    ~Scene() {
        if (got) got->Release();
    }
};

TEST(KxVariant, ReferencesAreTakenAndReleasedExactlyOnceOnEveryPath) {
    struct Path { const char* name; long long during; std::function<void(Scene&)> run; };
    const Path paths[] = {
        {"set", 2, [](Scene&) {}}, {"set twice", 2, [](Scene& s) { s.put(s.v); }},
        {"copy constructor", 3, [](Scene& s) { s.extra.emplace(s.v); }},
        {"move constructor", 2, [](Scene& s) { s.extra.emplace(std::move(s.v)); }},
        {"assign over another object", 3, [](Scene& s) { s.other = s.v; }},
        {"move-assign over another", 2, [](Scene& s) { s.other = std::move(s.v); }},
        {"assigned over", 1, [](Scene& s) { s.v = static_cast<const V&>(s.extra.emplace()); }},
        {"self assignment", 2, [](Scene& s) { s.v = static_cast<const V&>(s.v); }},
        {"SetNil", 1, [](Scene& s) { s.v.SetNil(); }}, {"Clear", 1, [](Scene& s) { s.v.Clear(); }},
        {"SetInvalid", 1, [](Scene& s) { s.v.SetInvalid(); }},
        {"another setter", 1, [](Scene& s) { s.v.SetString("x"); }},
        {"FromString", 1, [](Scene& s) { s.v.FromString("5", ItemType_i4, kCollapse); }},
        {"GetXmlObject", 3, [](Scene& s) { s.got = s.v.GetXmlObject(); }},
        {"printing", 2, [](Scene& s) { Print(s.v); }},
    };
    for (bool collection : {false, true}) {
        for (const Path& path : paths) {
            SCOPED_TRACE(std::string(collection ? "collection: " : "object: ") + path.name);
            int destroyed = 0, otherDestroyed = 0;
            CountingCollection* asCollection =
                collection ? new CountingCollection(destroyed) : nullptr;
            CSmartPtr<CXmlObjectBase> held(
                asCollection ? static_cast<CXmlObjectBase*>(asCollection)
                             : new CountingObject(destroyed));
            {
                Scene s;
                s.put = [&](V& v) {
                    collection ? v.SetXmlCollection(asCollection) : v.SetXmlObject(held);
                };
                s.put(s.v);
                s.other.SetXmlObject(new CountingObject(otherDestroyed));
                path.run(s);
                EXPECT_EQ(path.during, held->GetRefCount());
            }
            EXPECT_EQ(1, otherDestroyed);
            EXPECT_EQ(0, destroyed);
            EXPECT_EQ(1, held->GetRefCount());
            held = nullptr;
            EXPECT_EQ(1, destroyed);
        }
    }
}

TEST(KxVariant, VariantsAloneOwnTheObjectUntilTheLastLetsGo) {
    int destroyed = 0;
    auto* object = new CountingObject(destroyed);
    auto* collection = new CountingCollection(destroyed);
    std::optional<V> first(std::in_place);
    first->SetXmlObject(object);
    V second(*first), third;
    third.SetXmlCollection(collection);
    first.reset();
    // Setting the only reference again must not let it drop to zero on the way.
    second.SetXmlObject(object);
    third.SetXmlCollection(collection);
    EXPECT_EQ(0, destroyed);
    EXPECT_EQ(1, object->GetRefCount());
    second.SetNil();
    EXPECT_EQ(1, destroyed);
    third.FromString("x", ItemType_string, kCollapse);
    EXPECT_EQ(2, destroyed);
}

TEST(KxVariant, ObjectAndCollectionGettersCrossWhenTheClassAllows) {
    int destroyed = 0;
    CSmartPtr<CountingCollection> collection(new CountingCollection(destroyed));
    CSmartPtr<CountingObject> object(new CountingObject(destroyed));
    V v;
    v.SetXmlObject(collection);  // an object tag holding a collection
    CXmlCollectionBase* got = v.GetXmlCollection();
    EXPECT_EQ(collection.Ptr(), got);
    got->Release();
    v.SetXmlCollection(collection);
    CXmlObjectBase* asObject = v.GetXmlObject();
    EXPECT_EQ(static_cast<CXmlObjectBase*>(collection.Ptr()), asObject);
    asObject->Release();
    v.SetXmlObject(object);  // not a collection
    EXPECT_EQ(nullptr, v.GetXmlCollection());
    EXPECT_EQ(2, object->GetRefCount());
    EXPECT_EQ(1, collection->GetRefCount());
}

}  // namespace
