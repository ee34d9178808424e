// CFastInfosetContext: the Fast Infoset options of a serialization context.
#ifndef KX_CFASTINFOSETCONTEXT_H
#define KX_CFASTINFOSETCONTEXT_H

#include <string>
#include <utility>

#include "CFIVocabulary.h"
#include "KxConfig.h"
#include "KxTypes.h"

namespace KxXmlLib16 {

// Held by CSerializationContext (GetFIContext) and read by the Fast Infoset writer and reader.
// A plain value: copying copies every option and the whole vocabulary.
class KX_EXPORT CFastInfosetContext {
public:
    // How the values of one item type are encoded as character strings.
    enum EncodedCharacterString : int {
        ECS_Utf8 = 0,               // plain string in the default string encoding
        ECS_RestrictedAlphabet = 1, // restricted alphabet (1 numeric, 2 date and time)
        ECS_EncodingAlgorithm = 2   // encoding algorithm (1 hexadecimal ... 8 double)
    };

    // One entry of the encoding table: the kind, then the alphabet or algorithm index (ignored
    // for ECS_Utf8).
    typedef std::pair<EncodedCharacterString, unsigned long> EncodingEntry;

    // Number of entries in the encoding table: one per ItemType, 0 to 28.
    static const int EncodingTableSize = 29;

    // Default string encoding 0, every type encoded as a plain string (ECS_Utf8, 0), both add
    // lengths 6, no generated vocabulary, a vocabulary of built-in entries, no external URI.
    CFastInfosetContext();
    CFastInfosetContext(const CFastInfosetContext& other);
    CFastInfosetContext& operator=(const CFastInfosetContext& other);
    virtual ~CFastInfosetContext();

    // Selects the character-string encoding of plain strings (0 by default).
    unsigned char GetDefaultStringEncoding() const;

    // How values of this item type are encoded. Throws CKxInvalidParamException
    // "Invalid item type [%d] for the Fast Infoset encoding table." outside 0 to 28.
    const EncodingEntry& GetEncoding(ItemType type) const;
    // Sets the entry of one item type; same exception as GetEncoding.
    void SetEncoding(ItemType type, EncodedCharacterString kind, unsigned long index);

    // Fills the table with the suggested encodings: binary types by the hexadecimal and base64
    // algorithms, integers by short/int/long (unsigned types widened to the next algorithm
    // that holds all their values, 64-bit unsigned to long), float and double by their
    // algorithms, boolean by the boolean algorithm, duration as a plain string, the date and
    // time types by the date-and-time alphabet (2), decimal and integer by the numeric
    // alphabet (1). Invalid, char, string, object and collection keep their entries.
    void SetSuggestedValues();

    // Attribute values shorter than this many bytes (and not empty) are added to the attribute
    // value table; longer ones are always written literally. Default 6.
    unsigned long GetAttributeMaxAddLength() const;
    void SetAttributeMaxAddLength(unsigned long length);

    // The same limit for character chunks of element content. Default 6.
    unsigned long GetElementMaxAddLength() const;
    void SetElementMaxAddLength(unsigned long length);

    // Whether documents reference an external vocabulary and start from the context's one.
    bool GetUseGeneratedVocabulary() const;
    void SetUseGeneratedVocabulary(bool use);

    // URI written as the external-vocabulary reference (empty: the writer's fixed URI).
    std::string GetExternalVocabularyURI() const;
    void SetExternalVocabularyURI(const std::string& uri);

    // The initial vocabulary that generated code fills and that documents start from when
    // the generated vocabulary is in use.
    CFIVocabulary& GetVocabulary();
    const CFIVocabulary& GetVocabulary() const;

private:
    static int CheckedItemType(ItemType type);

    unsigned char m_defaultStringEncoding;
    EncodingEntry m_encodings[EncodingTableSize];
    unsigned long m_attributeMaxAddLength;
    unsigned long m_elementMaxAddLength;
    bool m_useGeneratedVocabulary;
    CFIVocabulary m_vocabulary;
    std::string m_externalVocabularyURI;
};

}  // namespace KxXmlLib16

#endif
