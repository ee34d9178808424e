// Typed collections of primitive values: one class per XSD item type (Ci4Col holds long values,
// CdateCol CDateTime values of kind dt_date, and so on; there is no char collection).
#ifndef KX_KXTYPEDCOLLECTIONS_H
#define KX_KXTYPEDCOLLECTIONS_H

#include <string>
#include <vector>

#include "CBigInteger.h"
#include "CBinaryData.h"
#include "CDateTime.h"
#include "CDateTimeSpan.h"
#include "CDecimal.h"
#include "CInstanceMonitor.h"
#include "CXmlTypeCollection.h"
#include "KxConfig.h"

namespace KxXmlLib16 {

// The constructor arguments shared by every typed collection: those of CXmlTypeCollection
// without the item type, which each class fixes. Unset facets are empty texts and -1.
#define KX_TYPED_COL_CTOR_PARAMS                                                              \
    const char *elementName, const char *namespaceUri, int minOccurs, int maxOccurs,          \
        const char *pattern = "", long long minLength = -1, long long maxLength = -1,         \
        const char *minInclusive = "", const char *maxInclusive = "",                         \
        const char *minExclusive = "", const char *maxExclusive = "", long long length = -1,  \
        long long totalDigits = -1, long long fractionDigits = -1,                            \
        CWhitespaceUtils::WhitespaceRule whitespaceRule = CWhitespaceUtils::WhitespaceRule_None, \
        const char *format = ""

// Every member of the family has the same surface (told on Ci4Col):
// - GetCount(): the number of items.
// - Item(index): a copy of the item; throws CKxInvalidParamException "Index %d is out of
//   range, use 0 - %d" (index, count) outside 0 .. count - 1.
// - AddAt(index, value): fires the add event with the value, then throws
//   CKxInvalidParamException "Index out of range" outside 0 .. count, checks the value against
//   the facets (the facet check's exception; nothing inserted), inserts it before `index`, and
//   fires add complete and change.
// - Add(value): AddAt(count, value).
// - AddFromString(text): Add of the value parsed under the whitespace rule
//   (CKxInvalidValueException for a bad lexical form).
// - Remove(index): fires remove with the index, throws as Item for a bad index, erases, fires
//   remove complete and change. Clear(): Remove(0) while not empty.
// - ToXml_Int: ValidateCount, then one element (the collection's name and namespace) per item
//   with the item's lexical form.
// - Clone(): a collection with the same settings and items (listeners not copied).
#define KX_DECLARE_TYPED_COL(ClassName, ValueType, ParamType)                                 \
    class KX_EXPORT ClassName : public CXmlTypeCollection {                                   \
    public:                                                                                   \
        explicit ClassName(KX_TYPED_COL_CTOR_PARAMS);                                         \
        ClassName(const ClassName& other);                                                    \
        ~ClassName() override;                                                                \
        ClassName* Clone() const override;                                                    \
        void ToXml_Int(CXmlWriter* writer, bool isRoot, const char* ns,                       \
                       const CSerializationContext& ctx, bool isNested) const override;       \
        int GetCount() const override;                                                        \
        void Clear() override;                                                                \
        void Remove(int index) override;                                                      \
        void AddFromString(std::string text) override;                                        \
        ValueType Item(int index) const;                                                      \
        void AddAt(int index, ParamType value);                                               \
        void Add(ParamType value);                                                            \
                                                                                              \
    private:                                                                                  \
        CInstanceMonitor m_monitor;                                                           \
        std::vector<ValueType> m_items;                                                       \
    }

KX_DECLARE_TYPED_COL(ChexBinaryCol, CBinaryData, const CBinaryData&);
KX_DECLARE_TYPED_COL(Cbase64BinaryCol, CBinaryData, const CBinaryData&);
KX_DECLARE_TYPED_COL(Ci1Col, char, char);
KX_DECLARE_TYPED_COL(Ci2Col, short, short);
KX_DECLARE_TYPED_COL(Ci4Col, long, long);
KX_DECLARE_TYPED_COL(Ci8Col, long long, long long);
KX_DECLARE_TYPED_COL(Cui1Col, unsigned char, unsigned char);
KX_DECLARE_TYPED_COL(Cui2Col, unsigned short, unsigned short);
KX_DECLARE_TYPED_COL(Cui4Col, unsigned long, unsigned long);
KX_DECLARE_TYPED_COL(Cui8Col, unsigned long long, unsigned long long);
KX_DECLARE_TYPED_COL(Cr4Col, float, float);
KX_DECLARE_TYPED_COL(Cr8Col, double, double);
KX_DECLARE_TYPED_COL(CdurationCol, CDateTimeSpan, const CDateTimeSpan&);
KX_DECLARE_TYPED_COL(CyearCol, unsigned short, unsigned short);
KX_DECLARE_TYPED_COL(CmonthCol, unsigned char, unsigned char);
KX_DECLARE_TYPED_COL(CdayCol, unsigned char, unsigned char);
KX_DECLARE_TYPED_COL(CstringCol, std::string, const std::string&);
KX_DECLARE_TYPED_COL(CbooleanCol, bool, bool);
KX_DECLARE_TYPED_COL(CdecimalCol, CDecimal, const CDecimal&);
KX_DECLARE_TYPED_COL(CintegerCol, CBigInteger, const CBigInteger&);

#undef KX_DECLARE_TYPED_COL

// Shared base of the five date collections: storage, events, count, removal and writing.
// Each member only checks the kind of a value in AddAt and then calls BaseAddAt.
class KX_EXPORT CdatetimeBaseCol : public CXmlTypeCollection {
public:
    CdatetimeBaseCol(ItemType itemType, KX_TYPED_COL_CTOR_PARAMS);
    CdatetimeBaseCol(const CdatetimeBaseCol& other);
    ~CdatetimeBaseCol() override;

    // As on Ci4Col; ToXml_Int writes each value with the formatter of the item type.
    void ToXml_Int(CXmlWriter* writer, bool isRoot, const char* ns,
                   const CSerializationContext& ctx, bool isNested) const override;
    int GetCount() const override;
    void Clear() override;
    void Remove(int index) override;
    CDateTime Item(int index) const;
    // Appends through the member's AddAt.
    void Add(const CDateTime& value);
    // Throws CKxInvalidParamException "Dates added to this collection must be of type <kind>"
    // for a value of another kind, then checks the facets and calls BaseAddAt.
    virtual void AddAt(int index, const CDateTime& value) = 0;

protected:
    // Steps of AddAt without the kind and facet checks: add event, index check ("Index out of
    // range"), insertion, add complete and change events.
    void BaseAddAt(int index, const CDateTime& value);

private:
    std::vector<CDateTime> m_items;
};

#define KX_DECLARE_DATE_COL(ClassName)                                                        \
    class KX_EXPORT ClassName : public CdatetimeBaseCol {                                     \
    public:                                                                                   \
        explicit ClassName(KX_TYPED_COL_CTOR_PARAMS);                                         \
        ClassName(const ClassName& other);                                                    \
        ~ClassName() override;                                                                \
        ClassName* Clone() const override;                                                    \
        void AddFromString(std::string text) override;                                        \
        void AddAt(int index, const CDateTime& value) override;                               \
                                                                                              \
    private:                                                                                  \
        CInstanceMonitor m_monitor;                                                           \
    }

KX_DECLARE_DATE_COL(CyearMonthCol);
KX_DECLARE_DATE_COL(CmonthDayCol);
KX_DECLARE_DATE_COL(CdateCol);
KX_DECLARE_DATE_COL(CdatetimeCol);
KX_DECLARE_DATE_COL(CtimeCol);

#undef KX_DECLARE_DATE_COL
#undef KX_TYPED_COL_CTOR_PARAMS

}  // namespace KxXmlLib16

#endif
