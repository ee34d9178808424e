// KxVariant: one value of any primitive item type, or a counted reference to a bindable object
// or collection, together with a nil mark.
#ifndef KX_KXVARIANT_H
#define KX_KXVARIANT_H

#include <iosfwd>
#include <string>

#include "CBigInteger.h"
#include "CBinaryData.h"
#include "CDateTime.h"
#include "CDateTimeSpan.h"
#include "CDecimal.h"
#include "CWhitespaceUtils.h"
#include "KxConfig.h"
#include "KxTypes.h"

namespace KxXmlLib16 {

class CXmlObjectBase;
class CXmlCollectionBase;

// The variant through which member values travel between generated classes, the metadata
// records, the facet checks and the writers and readers.
//
// State: a nil mark, a type tag (0 invalid, 1 to 26 the ItemType values, 27 bindable object,
// 28 collection) and 8 bytes of storage. The numeric types, year, month, day, char and boolean
// are held inline (no allocation); binary data, duration, the five date and time types, string,
// decimal and integer are held in a heap object owned by the variant; objects and collections
// are held with one reference (AddRef when taken, Release when let go).
//
// Getters never test the tag against their own type and never throw:
// - An inline getter reads the raw 8 bytes of the storage as its own type, whatever the tag
//   (unused bytes are zero, so after SetI1(-1) GetI4 reads 255; GetBoolean is true for any
//   non-zero first byte).
// - A heap getter returns the stored value when the tag is one whose storage is a heap object
//   of its class, and a default-constructed value otherwise (another tag, or no value because
//   the variant is nil or invalid). GetHexBinary and GetBase64Binary both read tags 1 and 2;
//   the five date and time getters are one function and read tags 14, 15, 19, 20 and 21.
// - GetXmlObject reads tags 27 and 28 (a collection is an object); GetXmlCollection reads
//   tag 28, and tag 27 when the object is in fact a collection. Otherwise they return null.
class KX_EXPORT KxVariant {
public:
    // Invalid (tag 0), not nil.
    KxVariant();
    // Starts invalid, then assigns (deep copy). Throws CKxException "Unknown Type" for a tag
    // above 28.
    KxVariant(const KxVariant& other);
    // Takes over the other's value and reference without copying or counting; the other is
    // left invalid and not nil.
    KxVariant(KxVariant&& other) noexcept;
    // Frees the held value (Clear).
    virtual ~KxVariant();

    // Copies the tag, the nil mark and the value: inline values bit for bit, heap values into
    // new heap objects, objects and collections with an AddRef. Throws CKxException
    // "Unknown Type" for a tag above 28; the variant is then unchanged.
    KxVariant& operator=(const KxVariant& other);
    // Releases what this variant held and takes over the other's state; the other is left
    // invalid and not nil.
    KxVariant& operator=(KxVariant&& other) noexcept;

    // If the tag is not 0: clears the nil mark, frees the heap value or releases the reference,
    // and sets the tag to 0. A variant of tag 0 keeps its nil mark.
    void Clear() noexcept;
    // Clear, and tag 0.
    void SetInvalid() noexcept;
    // Drops the value but keeps the tag and marks the variant nil, so a nil variant still tells
    // the type it would hold.
    void SetNil() noexcept;
    bool IsNil() const { return m_nil; }
    // True when the tag is not 0 or the variant is nil.
    bool IsValid() const { return m_type != 0 || m_nil; }
    // The type tag (a value above 28 is never produced by this class).
    ItemType GetItemType() const { return static_cast<ItemType>(m_type); }

    // Setters: replace what was held, clear the nil mark and store the value with its tag.
    // The heap setters copy the value (a CBinaryData copy shares its bytes); the date setters
    // keep the CDateTime as given, whatever its kind. Nothing changes if a copy cannot be made.
    void SetHexBinary(const CBinaryData& value);
    void SetBase64Binary(const CBinaryData& value);
    void SetI1(char value);
    void SetI2(short value);
    void SetI4(long value);
    void SetI8(long long value);
    void SetUI1(unsigned char value);
    void SetUI2(unsigned short value);
    void SetUI4(unsigned long value);
    void SetUI8(unsigned long long value);
    void SetR4(float value);
    void SetR8(double value);
    void SetDuration(const CDateTimeSpan& value);
    void SetYearMonth(const CDateTime& value);
    void SetMonthDay(const CDateTime& value);
    void SetYear(unsigned short value);
    void SetMonth(unsigned char value);
    void SetDay(unsigned char value);
    void SetDate(const CDateTime& value);
    void SetDateTime(const CDateTime& value);
    void SetTime(const CDateTime& value);
    void SetChar(char value);
    // The string is moved in: pass an rvalue to avoid a copy.
    void SetString(std::string value);
    void SetBoolean(bool value);
    void SetDecimal(const CDecimal& value);
    void SetInteger(const CBigInteger& value);
    // Takes one reference to the object (none for null).
    void SetXmlObject(CXmlObjectBase* value);
    // Takes one reference to the collection (none for null).
    void SetXmlCollection(CXmlCollectionBase* value);

    // Getters, unchecked as described above. Heap values are returned as copies.
    CBinaryData GetHexBinary() const;
    CBinaryData GetBase64Binary() const;
    char GetI1() const;
    short GetI2() const;
    long GetI4() const;
    long long GetI8() const;
    unsigned char GetUI1() const;
    unsigned short GetUI2() const;
    unsigned long GetUI4() const;
    unsigned long long GetUI8() const;
    float GetR4() const;
    double GetR8() const;
    CDateTimeSpan GetDuration() const;
    CDateTime GetYearMonth() const;
    CDateTime GetMonthDay() const;
    unsigned short GetYear() const;
    unsigned char GetMonth() const;
    unsigned char GetDay() const;
    CDateTime GetDate() const;
    CDateTime GetDateTime() const;
    CDateTime GetTime() const;
    char GetChar() const;
    std::string GetString() const;
    bool GetBoolean() const;
    CDecimal GetDecimal() const;
    CBigInteger GetInteger() const;
    // The pointer after an AddRef: the caller owns one reference and must Release it.
    CXmlObjectBase* GetXmlObject() const;
    CXmlCollectionBase* GetXmlCollection() const;

    // The type name of the tag ("hexBinary" ... "integer" for 1 to 26). Throws CKxException
    // "Invalid Type %d" (with the tag) for any other tag.
    const char* GetType() const;

    // The lexical form of the value through the CConversions formatter of the tag; a nil
    // variant formats the default value of its type. The format (null means empty) is used by
    // r4, r8 (a printf format) and decimal (a count of fraction digits) only. Throws
    // CKxException "Invalid Type %d to convert to string" (with the tag) for tags 0, 27, 28 and
    // above.
    std::string ToString(const char* format = nullptr) const;
    // The same text as ToString(format), for callers that only read it: a held string is
    // returned as it is, without a copy; any other value is formatted into `scratch`, which
    // is returned. The reference is valid while both the variant and `scratch` are unchanged.
    // Throws as ToString.
    const std::string& ToText(const char* format, std::string& scratch) const;

    // Parses the text with the CConversions parser of `type` (which applies `rule`) and stores
    // the result with the matching setter. Throws CKxException
    // "Invalid Type %d to convert to string" for a type outside 1 to 26 (showing this variant's
    // current tag, not `type`), and passes on the parser's exceptions (CKxInvalidValueException
    // for bad text, CKxException for an unknown rule). On failure the variant is unchanged.
    void FromString(const std::string& text, ItemType type, CWhitespaceUtils::WhitespaceRule rule);

private:
    // Lets the unit tests reach states the public interface cannot produce (a tag above 28).
    friend class KxVariantTestPeer;

    // Inline values live in `bits` (copied in and out with memcpy, unused bytes zero); heap
    // values and references in `ptr`, whose class the tag tells.
    union Storage {
        unsigned long long bits;
        void* ptr;
    };

    template <typename T>
    void SetInline(unsigned tag, T value);
    template <typename T>
    T GetInline() const;
    template <typename T, typename V>
    void SetHeap(unsigned tag, V&& value);
    template <typename T>
    const T& HeapRef() const;
    void CopyFrom(const KxVariant& other);

    bool m_nil;
    unsigned int m_type;
    Storage m_value;
};

// Prints the variant for test diagnostics: "i4:5", "string:abc", "nil(i4)", "invalid",
// "object:0x...", "collection:null", "unknown(99)".
KX_EXPORT std::ostream& operator<<(std::ostream& os, const KxVariant& value);

}  // namespace KxXmlLib16

#endif
