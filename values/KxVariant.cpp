#include "KxVariant.h"

#include <cstring>
#include <memory>
#include <ostream>
#include <utility>

#include "CConversions.h"
#include "CKxException.h"
#include "CXmlCollectionBase.h"
#include "CXmlObjectBase.h"
#include "FormatString.h"

namespace KxXmlLib16 {

namespace {

const unsigned kLastTag = ItemType_XmlCollection;

// What the storage holds for each tag.
enum Slot : unsigned char {
    Slot_None,        // tag 0 and unknown tags: nothing
    Slot_Inline,      // the value itself
    Slot_Binary,      // owned CBinaryData*
    Slot_Span,        // owned CDateTimeSpan*
    Slot_DateTime,    // owned CDateTime*
    Slot_String,      // owned std::string*
    Slot_Decimal,     // owned CDecimal*
    Slot_Integer,     // owned CBigInteger*
    Slot_Object,      // counted CXmlObjectBase*
    Slot_Collection,  // counted CXmlCollectionBase*
};

const Slot kSlots[kLastTag + 1] = {
    Slot_None,                                                   // 0 invalid
    Slot_Binary,     Slot_Binary,                                // 1 hexBinary, 2 base64Binary
    Slot_Inline,     Slot_Inline,     Slot_Inline, Slot_Inline,  // 3-6 i1 i2 i4 i8
    Slot_Inline,     Slot_Inline,     Slot_Inline, Slot_Inline,  // 7-10 ui1 ui2 ui4 ui8
    Slot_Inline,     Slot_Inline,                                // 11 r4, 12 r8
    Slot_Span,                                                   // 13 duration
    Slot_DateTime,   Slot_DateTime,                              // 14 yearMonth, 15 monthDay
    Slot_Inline,     Slot_Inline,     Slot_Inline,               // 16 year, 17 month, 18 day
    Slot_DateTime,   Slot_DateTime,   Slot_DateTime,             // 19 date, 20 datetime, 21 time
    Slot_Inline,     Slot_String,     Slot_Inline,               // 22 char, 23 string, 24 boolean
    Slot_Decimal,    Slot_Integer,                               // 25 decimal, 26 integer
    Slot_Object,     Slot_Collection,                            // 27 object, 28 collection
};

const char* const kTypeNames[] = {
    nullptr,     "hexBinary", "base64Binary", "i1",        "i2",     "i4",       "i8",
    "ui1",       "ui2",       "ui4",          "ui8",       "r4",     "r8",       "duration",
    "yearMonth", "monthDay",  "year",         "month",     "day",    "date",     "datetime",
    "time",      "char",      "string",       "boolean",   "decimal", "integer",
};

Slot SlotOf(unsigned tag) { return tag <= kLastTag ? kSlots[tag] : Slot_None; }

bool HoldsPointer(unsigned tag) { return SlotOf(tag) > Slot_Inline; }

template <typename T>
struct SlotFor;
template <> struct SlotFor<CBinaryData> { static const Slot value = Slot_Binary; };
template <> struct SlotFor<CDateTimeSpan> { static const Slot value = Slot_Span; };
template <> struct SlotFor<CDateTime> { static const Slot value = Slot_DateTime; };
template <> struct SlotFor<std::string> { static const Slot value = Slot_String; };
template <> struct SlotFor<CDecimal> { static const Slot value = Slot_Decimal; };
template <> struct SlotFor<CBigInteger> { static const Slot value = Slot_Integer; };

// Frees the heap value or releases the reference that `ptr` holds for a tag of this slot.
void FreeSlot(Slot slot, void* ptr) noexcept {
    switch (slot) {
        case Slot_Binary: delete static_cast<CBinaryData*>(ptr); break;
        case Slot_Span: delete static_cast<CDateTimeSpan*>(ptr); break;
        case Slot_DateTime: delete static_cast<CDateTime*>(ptr); break;
        case Slot_String: delete static_cast<std::string*>(ptr); break;
        case Slot_Decimal: delete static_cast<CDecimal*>(ptr); break;
        case Slot_Integer: delete static_cast<CBigInteger*>(ptr); break;
        case Slot_Object:
            if (ptr) static_cast<CXmlObjectBase*>(ptr)->Release();
            break;
        case Slot_Collection:
            if (ptr) static_cast<CXmlCollectionBase*>(ptr)->Release();
            break;
        case Slot_None:
        case Slot_Inline: break;
    }
}

// A new heap copy (or a new reference) of what `ptr` holds for a tag of this slot.
void* CopySlot(Slot slot, void* ptr) {
    if (!ptr) return nullptr;
    switch (slot) {
        case Slot_Binary: return new CBinaryData(*static_cast<const CBinaryData*>(ptr));
        case Slot_Span: return new CDateTimeSpan(*static_cast<const CDateTimeSpan*>(ptr));
        case Slot_DateTime: return new CDateTime(*static_cast<const CDateTime*>(ptr));
        case Slot_String: return new std::string(*static_cast<const std::string*>(ptr));
        case Slot_Decimal: return new CDecimal(*static_cast<const CDecimal*>(ptr));
        case Slot_Integer: return new CBigInteger(*static_cast<const CBigInteger*>(ptr));
        case Slot_Object: static_cast<CXmlObjectBase*>(ptr)->AddRef(); return ptr;
        case Slot_Collection: static_cast<CXmlCollectionBase*>(ptr)->AddRef(); return ptr;
        case Slot_None:
        case Slot_Inline: break;
    }
    return nullptr;
}

[[noreturn]] void ThrowNotConvertible(unsigned tag) {
    throw CKxException(FormatString("Invalid Type %d to convert to string", static_cast<int>(tag)));
}

}  // namespace

// ---- lifetime ----

KxVariant::KxVariant() : m_nil(false), m_type(ItemType_Invalid) { m_value.bits = 0; }

KxVariant::KxVariant(const KxVariant& other) : KxVariant() { CopyFrom(other); }

KxVariant::KxVariant(KxVariant&& other) noexcept
    : m_nil(other.m_nil), m_type(other.m_type), m_value(other.m_value) {
    other.m_nil = false;
    other.m_type = ItemType_Invalid;
    other.m_value.bits = 0;
}

KxVariant::~KxVariant() { Clear(); }

KxVariant& KxVariant::operator=(const KxVariant& other) {
    if (this != &other) CopyFrom(other);
    return *this;
}

KxVariant& KxVariant::operator=(KxVariant&& other) noexcept {
    if (this != &other) {
        // Take the other's state before releasing ours: the release may destroy the owner of
        // `other`.
        const bool nil = other.m_nil;
        const unsigned type = other.m_type;
        const Storage value = other.m_value;
        other.m_nil = false;
        other.m_type = ItemType_Invalid;
        other.m_value.bits = 0;
        Clear();
        m_nil = nil;
        m_type = type;
        m_value = value;
    }
    return *this;
}

void KxVariant::CopyFrom(const KxVariant& other) {
    if (other.m_type > kLastTag) throw CKxException("Unknown Type");
    // The copy is made before anything is released, so a failed copy changes nothing, and
    // `other` is not read after the release (which may destroy its owner).
    const bool nil = other.m_nil;
    const unsigned type = other.m_type;
    const Slot slot = SlotOf(type);
    Storage copy;
    if (slot > Slot_Inline)
        copy.ptr = CopySlot(slot, other.m_value.ptr);
    else
        copy = other.m_value;
    Clear();
    m_nil = nil;
    m_type = type;
    m_value = copy;
}

void KxVariant::Clear() noexcept {
    if (m_type == ItemType_Invalid) return;
    const Slot slot = SlotOf(m_type);
    void* held = slot > Slot_Inline ? m_value.ptr : nullptr;
    // Detach before releasing: a destructor run by Release then sees an empty variant.
    m_nil = false;
    m_type = ItemType_Invalid;
    m_value.bits = 0;
    FreeSlot(slot, held);
}

void KxVariant::SetInvalid() noexcept {
    Clear();
    m_type = ItemType_Invalid;
}

void KxVariant::SetNil() noexcept {
    const unsigned tag = m_type;
    Clear();
    m_nil = true;
    m_type = tag;
    if (HoldsPointer(tag)) m_value.ptr = nullptr;
}

// ---- storage helpers ----

template <typename T>
void KxVariant::SetInline(unsigned tag, T value) {
    Clear();  // leaves the storage zeroed, so the bytes past the value read as zero
    std::memcpy(&m_value, &value, sizeof(T));
    m_type = tag;
    m_nil = false;
}

template <typename T>
T KxVariant::GetInline() const {
    T value;
    std::memcpy(&value, &m_value, sizeof(T));
    return value;
}

template <typename T, typename V>
void KxVariant::SetHeap(unsigned tag, V&& value) {
    if (SlotOf(m_type) == SlotFor<T>::value && m_value.ptr) {
        // Same class already held: assign into it rather than allocate again.
        *static_cast<T*>(m_value.ptr) = std::forward<V>(value);
    } else {
        std::unique_ptr<T> fresh(new T(std::forward<V>(value)));
        Clear();
        m_value.ptr = fresh.release();
    }
    m_type = tag;
    m_nil = false;
}

template <typename T>
const T& KxVariant::HeapRef() const {
    if (SlotOf(m_type) == SlotFor<T>::value && m_value.ptr)
        return *static_cast<const T*>(m_value.ptr);
    // Another tag, or a nil variant whose value is gone: the type's default value.
    static const T empty;
    return empty;
}

// ---- setters ----

void KxVariant::SetHexBinary(const CBinaryData& value) {
    SetHeap<CBinaryData>(ItemType_hexBinary, value);
}
void KxVariant::SetBase64Binary(const CBinaryData& value) {
    SetHeap<CBinaryData>(ItemType_base64Binary, value);
}
void KxVariant::SetI1(char value) { SetInline(ItemType_i1, value); }
void KxVariant::SetI2(short value) { SetInline(ItemType_i2, value); }
void KxVariant::SetI4(long value) { SetInline(ItemType_i4, value); }
void KxVariant::SetI8(long long value) { SetInline(ItemType_i8, value); }
void KxVariant::SetUI1(unsigned char value) { SetInline(ItemType_ui1, value); }
void KxVariant::SetUI2(unsigned short value) { SetInline(ItemType_ui2, value); }
void KxVariant::SetUI4(unsigned long value) { SetInline(ItemType_ui4, value); }
void KxVariant::SetUI8(unsigned long long value) { SetInline(ItemType_ui8, value); }
void KxVariant::SetR4(float value) { SetInline(ItemType_r4, value); }
void KxVariant::SetR8(double value) { SetInline(ItemType_r8, value); }
void KxVariant::SetDuration(const CDateTimeSpan& value) {
    SetHeap<CDateTimeSpan>(ItemType_duration, value);
}
void KxVariant::SetYearMonth(const CDateTime& value) {
    SetHeap<CDateTime>(ItemType_yearMonth, value);
}
void KxVariant::SetMonthDay(const CDateTime& value) {
    SetHeap<CDateTime>(ItemType_monthDay, value);
}
void KxVariant::SetYear(unsigned short value) { SetInline(ItemType_year, value); }
void KxVariant::SetMonth(unsigned char value) { SetInline(ItemType_month, value); }
void KxVariant::SetDay(unsigned char value) { SetInline(ItemType_day, value); }
void KxVariant::SetDate(const CDateTime& value) { SetHeap<CDateTime>(ItemType_date, value); }
void KxVariant::SetDateTime(const CDateTime& value) {
    SetHeap<CDateTime>(ItemType_datetime, value);
}
void KxVariant::SetTime(const CDateTime& value) { SetHeap<CDateTime>(ItemType_time, value); }
void KxVariant::SetChar(char value) { SetInline(ItemType_char, value); }
void KxVariant::SetString(std::string value) {
    SetHeap<std::string>(ItemType_string, std::move(value));
}
void KxVariant::SetBoolean(bool value) { SetInline(ItemType_boolean, value); }
void KxVariant::SetDecimal(const CDecimal& value) { SetHeap<CDecimal>(ItemType_decimal, value); }
void KxVariant::SetInteger(const CBigInteger& value) {
    SetHeap<CBigInteger>(ItemType_integer, value);
}

void KxVariant::SetXmlObject(CXmlObjectBase* value) {
    // The new reference is taken first, so setting the object already held cannot destroy it.
    if (value) value->AddRef();
    Clear();
    m_value.ptr = value;
    m_type = ItemType_XmlObject;
    m_nil = false;
}

void KxVariant::SetXmlCollection(CXmlCollectionBase* value) {
    if (value) value->AddRef();
    Clear();
    m_value.ptr = value;
    m_type = ItemType_XmlCollection;
    m_nil = false;
}

// ---- getters ----

CBinaryData KxVariant::GetHexBinary() const {
    return HeapRef<CBinaryData>();
}
CBinaryData KxVariant::GetBase64Binary() const { return GetHexBinary(); }
char KxVariant::GetI1() const { return GetInline<char>(); }
short KxVariant::GetI2() const { return GetInline<short>(); }
long KxVariant::GetI4() const { return GetInline<long>(); }
long long KxVariant::GetI8() const { return GetInline<long long>(); }
unsigned char KxVariant::GetUI1() const { return GetInline<unsigned char>(); }
unsigned short KxVariant::GetUI2() const { return GetInline<unsigned short>(); }
unsigned long KxVariant::GetUI4() const { return GetInline<unsigned long>(); }
unsigned long long KxVariant::GetUI8() const { return GetInline<unsigned long long>(); }
float KxVariant::GetR4() const { return GetInline<float>(); }
double KxVariant::GetR8() const { return GetInline<double>(); }

CDateTimeSpan KxVariant::GetDuration() const {
    return HeapRef<CDateTimeSpan>();
}

CDateTime KxVariant::GetDateTime() const {
    return HeapRef<CDateTime>();
}
CDateTime KxVariant::GetYearMonth() const { return GetDateTime(); }
CDateTime KxVariant::GetMonthDay() const { return GetDateTime(); }
CDateTime KxVariant::GetDate() const { return GetDateTime(); }
CDateTime KxVariant::GetTime() const { return GetDateTime(); }

unsigned short KxVariant::GetYear() const { return GetInline<unsigned short>(); }
unsigned char KxVariant::GetMonth() const { return GetInline<unsigned char>(); }
unsigned char KxVariant::GetDay() const { return GetInline<unsigned char>(); }
char KxVariant::GetChar() const { return GetInline<char>(); }

std::string KxVariant::GetString() const {
    return HeapRef<std::string>();
}

// Read as a byte: not every byte pattern is a valid bool.
bool KxVariant::GetBoolean() const { return GetInline<unsigned char>() != 0; }

CDecimal KxVariant::GetDecimal() const {
    return HeapRef<CDecimal>();
}

CBigInteger KxVariant::GetInteger() const {
    return HeapRef<CBigInteger>();
}

CXmlObjectBase* KxVariant::GetXmlObject() const {
    CXmlObjectBase* object = nullptr;
    if (m_type == ItemType_XmlObject)
        object = static_cast<CXmlObjectBase*>(m_value.ptr);
    else if (m_type == ItemType_XmlCollection)
        object = static_cast<CXmlCollectionBase*>(m_value.ptr);
    if (object) object->AddRef();
    return object;
}

CXmlCollectionBase* KxVariant::GetXmlCollection() const {
    CXmlCollectionBase* collection = nullptr;
    if (m_type == ItemType_XmlCollection)
        collection = static_cast<CXmlCollectionBase*>(m_value.ptr);
    else if (m_type == ItemType_XmlObject && m_value.ptr)
        collection = dynamic_cast<CXmlCollectionBase*>(static_cast<CXmlObjectBase*>(m_value.ptr));
    if (collection) collection->AddRef();
    return collection;
}

// ---- names and text ----

const char* KxVariant::GetType() const {
    if (m_type == ItemType_Invalid || m_type > ItemType_integer)
        throw CKxException(FormatString("Invalid Type %d", static_cast<int>(m_type)));
    return kTypeNames[m_type];
}

std::string KxVariant::ToString(const char* format) const {
    const bool plain = format == nullptr || *format == '\0';
    switch (m_type) {
        case ItemType_hexBinary: return CConversions::hexBinaryToString(HeapRef<CBinaryData>());
        case ItemType_base64Binary:
            return CConversions::base64BinaryToString(HeapRef<CBinaryData>());
        case ItemType_i1: return CConversions::i1ToString(GetI1());
        case ItemType_i2: return CConversions::i2ToString(GetI2());
        case ItemType_i4: return CConversions::i4ToString(GetI4());
        case ItemType_i8: return CConversions::i8ToString(GetI8());
        case ItemType_ui1: return CConversions::ui1ToString(GetUI1());
        case ItemType_ui2: return CConversions::ui2ToString(GetUI2());
        case ItemType_ui4: return CConversions::ui4ToString(GetUI4());
        case ItemType_ui8: return CConversions::ui8ToString(GetUI8());
        case ItemType_r4:
            return plain ? CConversions::r4ToString(GetR4())
                         : CConversions::r4ToString(GetR4(), format);
        case ItemType_r8:
            return plain ? CConversions::r8ToString(GetR8())
                         : CConversions::r8ToString(GetR8(), format);
        case ItemType_duration: return CConversions::durationToString(HeapRef<CDateTimeSpan>());
        case ItemType_yearMonth: return CConversions::yearMonthToString(HeapRef<CDateTime>());
        case ItemType_monthDay: return CConversions::monthDayToString(HeapRef<CDateTime>());
        case ItemType_date: return CConversions::dateToString(HeapRef<CDateTime>());
        case ItemType_datetime: return CConversions::datetimeToString(HeapRef<CDateTime>());
        case ItemType_time: return CConversions::timeToString(HeapRef<CDateTime>());
        case ItemType_year: return CConversions::yearToString(GetYear());
        case ItemType_month: return CConversions::monthToString(GetMonth());
        case ItemType_day: return CConversions::dayToString(GetDay());
        case ItemType_char: return CConversions::charToString(GetChar());
        case ItemType_string: return HeapRef<std::string>();
        case ItemType_boolean: return CConversions::booleanToString(GetBoolean());
        case ItemType_decimal:
            return plain ? CConversions::decimalToString(HeapRef<CDecimal>())
                         : CConversions::decimalToString(HeapRef<CDecimal>(), format);
        case ItemType_integer: return CConversions::integerToString(HeapRef<CBigInteger>());
        default: ThrowNotConvertible(m_type);
    }
}

const std::string& KxVariant::ToText(const char* format, std::string& scratch) const {
    if (m_type == ItemType_string) return HeapRef<std::string>();
    scratch = ToString(format);
    return scratch;
}

void KxVariant::FromString(const std::string& text, ItemType type,
                           CWhitespaceUtils::WhitespaceRule rule) {
    // Every branch parses completely before the setter runs, so a failure changes nothing.
    switch (type) {
        case ItemType_hexBinary: SetHexBinary(CConversions::hexBinaryFromString(text, rule)); break;
        case ItemType_base64Binary:
            SetBase64Binary(CConversions::base64BinaryFromString(text, rule));
            break;
        case ItemType_i1: SetI1(CConversions::i1FromString(text, rule)); break;
        case ItemType_i2: SetI2(CConversions::i2FromString(text, rule)); break;
        case ItemType_i4: SetI4(CConversions::i4FromString(text, rule)); break;
        case ItemType_i8: SetI8(CConversions::i8FromString(text, rule)); break;
        case ItemType_ui1: SetUI1(CConversions::ui1FromString(text, rule)); break;
        case ItemType_ui2: SetUI2(CConversions::ui2FromString(text, rule)); break;
        case ItemType_ui4: SetUI4(CConversions::ui4FromString(text, rule)); break;
        case ItemType_ui8: SetUI8(CConversions::ui8FromString(text, rule)); break;
        case ItemType_r4: SetR4(CConversions::r4FromString(text, rule)); break;
        case ItemType_r8: SetR8(CConversions::r8FromString(text, rule)); break;
        case ItemType_duration: SetDuration(CConversions::durationFromString(text, rule)); break;
        case ItemType_yearMonth: SetYearMonth(CConversions::yearMonthFromString(text, rule)); break;
        case ItemType_monthDay: SetMonthDay(CConversions::monthDayFromString(text, rule)); break;
        case ItemType_year: SetYear(CConversions::yearFromString(text, rule)); break;
        case ItemType_month: SetMonth(CConversions::monthFromString(text, rule)); break;
        case ItemType_day: SetDay(CConversions::dayFromString(text, rule)); break;
        case ItemType_date: SetDate(CConversions::dateFromString(text, rule)); break;
        case ItemType_datetime: SetDateTime(CConversions::datetimeFromString(text, rule)); break;
        case ItemType_time: SetTime(CConversions::timeFromString(text, rule)); break;
        case ItemType_char: SetChar(CConversions::charFromString(text, rule)); break;
        case ItemType_string: SetString(CConversions::stringFromString(text, rule)); break;
        case ItemType_boolean: SetBoolean(CConversions::booleanFromString(text, rule)); break;
        // The parsed digits move into the held value instead of being copied.
        case ItemType_decimal:
            SetHeap<CDecimal>(ItemType_decimal, CConversions::decimalFromString(text, rule));
            break;
        case ItemType_integer:
            SetHeap<CBigInteger>(ItemType_integer, CConversions::integerFromString(text, rule));
            break;
        default: ThrowNotConvertible(m_type);
    }
}

std::ostream& operator<<(std::ostream& os, const KxVariant& value) {
    const unsigned tag = static_cast<unsigned>(value.GetItemType());
    if (value.IsNil()) {
        const char* name = tag == ItemType_Invalid        ? "invalid"
                           : tag == ItemType_XmlObject     ? "object"
                           : tag == ItemType_XmlCollection ? "collection"
                           : tag <= ItemType_integer       ? value.GetType()
                                                           : "unknown";
        return os << "nil(" << name << ")";
    }
    if (tag == ItemType_Invalid) return os << "invalid";
    if (tag == ItemType_XmlObject || tag == ItemType_XmlCollection) {
        CXmlObjectBase* object = value.GetXmlObject();
        os << (tag == ItemType_XmlObject ? "object:" : "collection:");
        if (object) {
            os << static_cast<const void*>(object);
            object->Release();
        } else {
            os << "null";
        }
        return os;
    }
    if (tag > ItemType_integer) return os << "unknown(" << tag << ")";
    return os << value.GetType() << ':' << value.ToString();
}

}  // namespace KxXmlLib16
