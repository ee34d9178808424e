// CFastInfosetWriter: the writer that produces a Fast Infoset document (ITU-T X.891, the
// binary encoding of the XML infoset) on a binary stream.
#ifndef KX_CFASTINFOSETWRITER_H
#define KX_CFASTINFOSETWRITER_H

#include <string>
#include <vector>

#include "CBinaryData.h"
#include "CBinaryStream.h"
#include "CFIVocabulary.h"
#include "CFastInfosetContext.h"
#include "CXmlWriter.h"
#include "KxConfig.h"
#include "KxTypes.h"

namespace KxXmlLib16 {

// Writes one document: WriteStartDocument, the root element through the CXmlWriter
// operations, then WriteEndDocument. Names, namespace names and short values are indexed in
// the writer's own vocabulary (a copy of the context's when it uses the generated vocabulary)
// and written by index when they recur. An element's start is held back until its first
// content or its end, so that its namespace declarations and attributes can be written in
// front of its content. Every namespace that a name uses is declared on the element that uses
// it. Failures throw CKxException; bytes already appended stay in the stream.
class KX_EXPORT CFastInfosetWriter : public CXmlWriter {
public:
    // External vocabulary URI written when the context uses the generated vocabulary and
    // names no URI of its own.
    static const char* const DefaultExternalVocabularyURI;

    // Writes to `stream` with the options of `context`; both must outlive the writer.
    CFastInfosetWriter(CBinaryStream& stream, CFastInfosetContext& context);
    ~CFastInfosetWriter() override;

    // Appends the chosen XML declaration (none for FInfoDecl_None), the identification and
    // version octets and the optional components (the external vocabulary reference when the
    // context uses the generated vocabulary).
    void WriteStartDocument(FInfoDecl declaration);
    // Ends the document: one double terminator when an element end is still pending, a single
    // terminator otherwise.
    void WriteEndDocument();

    // Comments, processing instructions and inline schemas are not written.
    void WriteComment(const std::string& text) override;
    void WritePI(const std::string& text) override;
    void WriteInlineSchema(const std::string& text) override;

    void WriteStartElement(const std::string& name, const std::string& ns) override;
    // Writes a character chunk encoded as the context says for `type`; an empty text writes
    // nothing. Throws the value-encoding errors (see WriteAttributeString).
    void WriteString(const std::string& text, ItemType type, bool isDefaultValue) override;
    void WriteEndElement() override;
    // Throws CKxException "Attributes must be added before elements" once the element has
    // content, and the value-encoding errors: "Failed to write FastInfoset. Unsupported Feature
    // UTF16BE in EncodedCharacterStringBit5.", "... Invalid Restricted Alphabet value [%d]",
    // "... Invalid Encoding Algorithm value [%d]", "... Invalid character not found for
    // Restricted Alphabet.", "... Unknown encoding in EncodedCharacterStringBit7." and the
    // errors of CFastInfosetBinaryData::SetAsEncodedString.
    void WriteAttributeString(const std::string& name, const std::string& ns,
                              const std::string& value, ItemType type) override;
    // xsi:type naming `typeName` in `typeNs`; same errors as WriteAttributeString.
    void WriteAttributeType(const std::string& typeName, const std::string& typeNs,
                            ItemType type) override;
    // xsi:nil="true"; same errors as WriteAttributeString.
    void WriteAttributeNil() override;

    // The tables as grown so far by this document.
    const CFIVocabulary& GetVocabulary() const;

    // Packs `text` into `out` with one code per character, each code being the character's
    // position in `alphabet`, in the smallest width of at least 4 bits that leaves the
    // all-ones code free; the last octet is filled with one bits. Throws CKxException
    // "Failed to write FastInfoset. Invalid Restricted Alphabet. Alphabet must contain between
    // 2 and 2^20 characters.", "Failed to write FastInfoset. Unsupported Feature in
    // AppendRestrictedAlphabetString." (a width other than 4 or 8 bits) and "Failed to write
    // FastInfoset. Invalid character not found for Restricted Alphabet.".
    static void AppendRestrictedAlphabetString(CBinaryData& out, const std::string& alphabet,
                                               const std::string& text);

private:
    struct PendingAttribute {
        std::string prefix;
        std::string ns;
        std::string name;
        std::string value;
        ItemType type;
    };
    struct NamespaceDeclaration {
        bool hasPrefix;
        std::string prefix;
        std::string ns;
    };

    void CompletePendingStart();
    void WritePendingTerminator();
    void EndList();
    void RequireOpenStart();
    std::string PrefixForAttribute(CXmlWriterContext& context, const std::string& ns);
    void AddAttribute(const std::string& name, const std::string& ns, const std::string& value,
                      ItemType type);

    void Integer1To2pw20Bit2(unsigned long value, unsigned char high);
    void Integer1To2pw20Bit3(unsigned long value, unsigned char high);
    void Integer1To2pw20Bit4(unsigned long value);
    void NonEmptyOctetUTF8StringBit2(const std::string& text);
    void IdentifyingString(const std::string& text, bool isPrefix);
    void QualifiedNameOrIndexBit3(const std::string& prefix, const std::string& ns,
                                  const std::string& name, bool hasAttributes);
    void QualifiedNameOrIndexBit2(const std::string& prefix, const std::string& ns,
                                  const std::string& name);
    void NonIdentifyingStringOrIndexBit1(const std::string& value, ItemType type);
    void NonIdentifyingStringOrIndexBit3(const std::string& value, ItemType type);
    // Encodes a value as the context says for `type`: returns the format (0 UTF-8, 2
    // restricted alphabet, 3 encoding algorithm), the table index and the data octets.
    int EncodeValue(const std::string& value, ItemType type, bool chunk, unsigned long& index,
                    CBinaryData& data) const;

    CBinaryStream& m_stream;
    CFastInfosetContext& m_context;
    CFIVocabulary m_vocabulary;
    bool m_terminatorPending;
    // The element whose start is held back: its qualified name, the namespace declarations
    // and the attributes collected for it.
    std::string m_pendingPrefix;
    std::vector<NamespaceDeclaration> m_pendingDeclarations;
    std::vector<PendingAttribute> m_pendingAttributes;
};

}  // namespace KxXmlLib16

#endif
