#include "KxTypedCollections.h"

#include "CConversions.h"
#include "CKxException.h"
#include "CXmlObjectHelper.h"
#include "CXmlWriter.h"
#include "FormatString.h"

namespace KxXmlLib16 {

namespace {

[[noreturn]] void ThrowBadIndex(int index, int count) {
    throw CKxInvalidParamException(
        FormatString("Index %d is out of range, use 0 - %d", index, count));
}

// Opens the item's element, writes its text with the collection's item type, closes it.
void WriteItem(CXmlWriter* writer, const CXmlTypeCollection& col, const std::string& text) {
    writer->WriteStartElement(col.GetElementName(), col.GetNamespace());
    writer->WriteString(text, col.GetItemType(), false);
    writer->WriteEndElement();
}

}  // namespace

// The arguments after the item type, in the order the constructors declare them.
#define KX_TYPED_COL_CTOR_DEFS                                                                \
    const char *elementName, const char *namespaceUri, int minOccurs, int maxOccurs,          \
        const char *pattern, long long minLength, long long maxLength,                        \
        const char *minInclusive, const char *maxInclusive, const char *minExclusive,         \
        const char *maxExclusive, long long length, long long totalDigits,                    \
        long long fractionDigits, CWhitespaceUtils::WhitespaceRule whitespaceRule,            \
        const char *format
#define KX_TYPED_COL_CTOR_ARGS                                                                \
    elementName, namespaceUri, minOccurs, maxOccurs, pattern, minLength, maxLength,           \
        minInclusive, maxInclusive, minExclusive, maxExclusive, length, totalDigits,          \
        fractionDigits, whitespaceRule, format

// TO_TEXT is an expression over `value` (the item) and m_format.
#define KX_DEFINE_TYPED_COL(ClassName, ValueType, ParamType, Prefix, TO_TEXT)                 \
    ClassName::ClassName(KX_TYPED_COL_CTOR_DEFS)                                              \
        : CXmlTypeCollection(ItemType_##Prefix, KX_TYPED_COL_CTOR_ARGS),                      \
          m_monitor(#ClassName) {}                                                            \
    ClassName::ClassName(const ClassName& other)                                              \
        : CXmlTypeCollection(other), m_monitor(#ClassName), m_items(other.m_items) {}         \
    ClassName::~ClassName() = default;                                                        \
    ClassName* ClassName::Clone() const { return new ClassName(*this); }                      \
    int ClassName::GetCount() const { return static_cast<int>(m_items.size()); }              \
    ValueType ClassName::Item(int index) const {                                              \
        if (index < 0 || index >= GetCount()) ThrowBadIndex(index, GetCount());               \
        return m_items[static_cast<size_t>(index)];                                           \
    }                                                                                         \
    void ClassName::AddAt(int index, ParamType value) {                                       \
        FireOnCollectionAdd(const_cast<void*>(static_cast<const void*>(&value)));             \
        if (index < 0 || index > GetCount()) {                                                \
            throw CKxInvalidParamException("Index out of range");                             \
        }                                                                                     \
        CXmlObjectHelper::CheckRestrictionFor##Prefix(GetElementName().c_str(), value,        \
                                                      m_restrictions);                        \
        m_items.insert(m_items.begin() + index, value);                                       \
        FireOnCollectionAddComplete(const_cast<void*>(static_cast<const void*>(&value)));     \
        FireOnCollectionChange();                                                             \
    }                                                                                         \
    void ClassName::Add(ParamType value) { AddAt(GetCount(), value); }                        \
    void ClassName::AddFromString(std::string text) {                                         \
        Add(CConversions::Prefix##FromString(text, m_whitespaceRule));                        \
    }                                                                                         \
    void ClassName::Remove(int index) {                                                       \
        FireOnCollectionRemove(index);                                                        \
        if (index < 0 || index >= GetCount()) ThrowBadIndex(index, GetCount());               \
        m_items.erase(m_items.begin() + index);                                               \
        FireOnCollectionRemoveComplete(index);                                                \
        FireOnCollectionChange();                                                             \
    }                                                                                         \
    void ClassName::Clear() {                                                                 \
        while (GetCount() != 0) Remove(0);                                                    \
    }                                                                                         \
    void ClassName::ToXml_Int(CXmlWriter* writer, bool, const char*,                          \
                              const CSerializationContext& ctx, bool) const {                 \
        ValidateCount(ctx);                                                                   \
        for (const ValueType& value : m_items) WriteItem(writer, *this, TO_TEXT);             \
    }

#define KX_PLAIN_TEXT(Prefix) CConversions::Prefix##ToString(value)
#define KX_FORMATTED_TEXT(Prefix)                                                             \
    (m_format.empty() ? CConversions::Prefix##ToString(value)                                 \
                      : CConversions::Prefix##ToString(value, m_format))

KX_DEFINE_TYPED_COL(ChexBinaryCol, CBinaryData, const CBinaryData&, hexBinary,
                    KX_PLAIN_TEXT(hexBinary))
KX_DEFINE_TYPED_COL(Cbase64BinaryCol, CBinaryData, const CBinaryData&, base64Binary,
                    KX_PLAIN_TEXT(base64Binary))
KX_DEFINE_TYPED_COL(Ci1Col, char, char, i1, KX_PLAIN_TEXT(i1))
KX_DEFINE_TYPED_COL(Ci2Col, short, short, i2, KX_PLAIN_TEXT(i2))
KX_DEFINE_TYPED_COL(Ci4Col, long, long, i4, KX_PLAIN_TEXT(i4))
KX_DEFINE_TYPED_COL(Ci8Col, long long, long long, i8, KX_PLAIN_TEXT(i8))
KX_DEFINE_TYPED_COL(Cui1Col, unsigned char, unsigned char, ui1, KX_PLAIN_TEXT(ui1))
KX_DEFINE_TYPED_COL(Cui2Col, unsigned short, unsigned short, ui2, KX_PLAIN_TEXT(ui2))
KX_DEFINE_TYPED_COL(Cui4Col, unsigned long, unsigned long, ui4, KX_PLAIN_TEXT(ui4))
KX_DEFINE_TYPED_COL(Cui8Col, unsigned long long, unsigned long long, ui8, KX_PLAIN_TEXT(ui8))
KX_DEFINE_TYPED_COL(Cr4Col, float, float, r4, KX_FORMATTED_TEXT(r4))
KX_DEFINE_TYPED_COL(Cr8Col, double, double, r8, KX_FORMATTED_TEXT(r8))
KX_DEFINE_TYPED_COL(CdurationCol, CDateTimeSpan, const CDateTimeSpan&, duration,
                    KX_PLAIN_TEXT(duration))
KX_DEFINE_TYPED_COL(CyearCol, unsigned short, unsigned short, year, KX_PLAIN_TEXT(year))
KX_DEFINE_TYPED_COL(CmonthCol, unsigned char, unsigned char, month, KX_PLAIN_TEXT(month))
KX_DEFINE_TYPED_COL(CdayCol, unsigned char, unsigned char, day, KX_PLAIN_TEXT(day))
KX_DEFINE_TYPED_COL(CstringCol, std::string, const std::string&, string, KX_PLAIN_TEXT(string))
KX_DEFINE_TYPED_COL(CbooleanCol, bool, bool, boolean, KX_PLAIN_TEXT(boolean))
KX_DEFINE_TYPED_COL(CdecimalCol, CDecimal, const CDecimal&, decimal,
                    KX_FORMATTED_TEXT(decimal))
KX_DEFINE_TYPED_COL(CintegerCol, CBigInteger, const CBigInteger&, integer,
                    KX_PLAIN_TEXT(integer))

// ---- Date family ------------------------------------------------------------------------

CdatetimeBaseCol::CdatetimeBaseCol(ItemType itemType, KX_TYPED_COL_CTOR_DEFS)
    : CXmlTypeCollection(itemType, KX_TYPED_COL_CTOR_ARGS) {}
CdatetimeBaseCol::CdatetimeBaseCol(const CdatetimeBaseCol& other) = default;
CdatetimeBaseCol::~CdatetimeBaseCol() = default;

int CdatetimeBaseCol::GetCount() const { return static_cast<int>(m_items.size()); }

CDateTime CdatetimeBaseCol::Item(int index) const {
    if (index < 0 || index >= GetCount()) ThrowBadIndex(index, GetCount());
    return m_items[static_cast<size_t>(index)];
}

void CdatetimeBaseCol::Add(const CDateTime& value) { AddAt(GetCount(), value); }

void CdatetimeBaseCol::BaseAddAt(int index, const CDateTime& value) {
    FireOnCollectionAdd(const_cast<CDateTime*>(&value));
    if (index < 0 || index > GetCount()) throw CKxInvalidParamException("Index out of range");
    m_items.insert(m_items.begin() + index, value);
    FireOnCollectionAddComplete(const_cast<CDateTime*>(&value));
    FireOnCollectionChange();
}

void CdatetimeBaseCol::Remove(int index) {
    FireOnCollectionRemove(index);
    if (index < 0 || index >= GetCount()) ThrowBadIndex(index, GetCount());
    m_items.erase(m_items.begin() + index);
    FireOnCollectionRemoveComplete(index);
    FireOnCollectionChange();
}

void CdatetimeBaseCol::Clear() {
    while (GetCount() != 0) Remove(0);
}

void CdatetimeBaseCol::ToXml_Int(CXmlWriter* writer, bool, const char*,
                                 const CSerializationContext& ctx, bool) const {
    ValidateCount(ctx);
    for (const CDateTime& value : m_items) {
        std::string text;
        switch (m_itemType) {
            case ItemType_yearMonth: text = CConversions::yearMonthToString(value); break;
            case ItemType_monthDay: text = CConversions::monthDayToString(value); break;
            case ItemType_date: text = CConversions::dateToString(value); break;
            case ItemType_time: text = CConversions::timeToString(value); break;
            default: text = CConversions::datetimeToString(value); break;
        }
        WriteItem(writer, *this, text);
    }
}

// The kind test precedes the facet check and BaseAddAt, so a value of the wrong kind fires
// no event at all.
#define KX_DEFINE_DATE_COL(ClassName, Prefix, Kind)                                           \
    ClassName::ClassName(KX_TYPED_COL_CTOR_DEFS)                                              \
        : CdatetimeBaseCol(ItemType_##Prefix, KX_TYPED_COL_CTOR_ARGS),                        \
          m_monitor(#ClassName) {}                                                            \
    ClassName::ClassName(const ClassName& other)                                              \
        : CdatetimeBaseCol(other), m_monitor(#ClassName) {}                                   \
    ClassName::~ClassName() = default;                                                        \
    ClassName* ClassName::Clone() const { return new ClassName(*this); }                      \
    void ClassName::AddFromString(std::string text) {                                         \
        Add(CConversions::Prefix##FromString(text, m_whitespaceRule));                        \
    }                                                                                         \
    void ClassName::AddAt(int index, const CDateTime& value) {                                \
        if (value.GetType() != CDateTime::Kind) {                                             \
            throw CKxInvalidParamException(                                                   \
                "Dates added to this collection must be of type " #Kind);                     \
        }                                                                                     \
        CXmlObjectHelper::CheckRestrictionFor##Prefix(GetElementName().c_str(), value,        \
                                                      m_restrictions);                        \
        BaseAddAt(index, value);                                                              \
    }

KX_DEFINE_DATE_COL(CyearMonthCol, yearMonth, dt_gYearMonth)
KX_DEFINE_DATE_COL(CmonthDayCol, monthDay, dt_gMonthDay)
KX_DEFINE_DATE_COL(CdateCol, date, dt_date)
KX_DEFINE_DATE_COL(CdatetimeCol, datetime, dt_dateTime)
KX_DEFINE_DATE_COL(CtimeCol, time, dt_time)

}  // namespace KxXmlLib16
