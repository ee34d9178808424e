// CFastInfosetContext: the Fast Infoset options of a serialization context.
#ifndef KX_CFASTINFOSETCONTEXT_H
#define KX_CFASTINFOSETCONTEXT_H

#include <string>

#include "KxConfig.h"

namespace KxXmlLib16 {

// Held by CSerializationContext (GetFIContext) and read by the Fast Infoset writer and reader.
// A plain value: copying copies every option.
class KX_EXPORT CFastInfosetContext {
public:
    // How the values of one item type are encoded as character strings.
    enum EncodedCharacterString : int {
        ECS_Utf8 = 0,               // plain string in the default string encoding
        ECS_RestrictedAlphabet = 1, // restricted alphabet (1 numeric, 2 date and time)
        ECS_EncodingAlgorithm = 2   // encoding algorithm (1 hexadecimal ... 8 double)
    };

    // Default string encoding 0, both add lengths 6, no generated vocabulary, no external URI.
    CFastInfosetContext();
    CFastInfosetContext(const CFastInfosetContext& other);
    CFastInfosetContext& operator=(const CFastInfosetContext& other);
    virtual ~CFastInfosetContext();

    // Selects the character-string encoding of plain strings (0 by default).
    unsigned char GetDefaultStringEncoding() const;

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

private:
    unsigned char m_defaultStringEncoding;
    unsigned long m_attributeMaxAddLength;
    unsigned long m_elementMaxAddLength;
    bool m_useGeneratedVocabulary;
    std::string m_externalVocabularyURI;
};

}  // namespace KxXmlLib16

#endif
