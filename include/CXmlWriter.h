// CXmlWriter: the writer interface that every output format (XML text, JSON, Fast Infoset)
// implements, plus the namespace bookkeeping the formats share: a chain of element contexts,
// each with its scope of namespace-to-prefix bindings and default namespace.
#ifndef KX_CXMLWRITER_H
#define KX_CXMLWRITER_H

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "CInstanceMonitor.h"
#include "KxConfig.h"
#include "KxTypes.h"

namespace KxXmlLib16 {

class KX_EXPORT CXmlWriter : public CInstanceMonitor {
public:
    // Namespace URI (key) to prefix (value), ordered by URI.
    typedef std::map<std::string, std::string> NamespaceMap;

    // Collection framing set by the engine on the current element (read by the JSON writer).
    enum ContextState {
        ContextState_None = 0,
        ContextState_CollectionStart = 1,  // the items of a non-empty collection follow
        ContextState_InCollection = 2,     // the writer has opened the collection's frame
        ContextState_CollectionEnd = 3     // the last item has been written
    };

    // The namespace bound to the prefix "xml" by the XML recommendation.
    static const std::string XML_NAMESPACE;

    // One open element: its name, namespace, depth, child count, start-tag state, collection
    // state and namespace scope. A context owns its parent, so deleting the innermost context
    // frees the whole chain.
    class KX_EXPORT CXmlWriterContext : public CInstanceMonitor {
    public:
        // A root context (depth 0) with a scope of its own: `defaultNamespace` and a copy of
        // `namespaceMap`.
        CXmlWriterContext(const std::string& name, const std::string& ns,
                          const std::string& defaultNamespace, const NamespaceMap& namespaceMap);
        // A child context (depth parent + 1) that shares the parent's scope until its own scope
        // is changed. Takes ownership of `parent` (which must not be null).
        CXmlWriterContext(const std::string& name, const std::string& ns,
                          CXmlWriterContext* parent);
        // Deletes the context and every enclosing context still attached to it.
        virtual ~CXmlWriterContext();
        CXmlWriterContext(const CXmlWriterContext&) = delete;
        CXmlWriterContext& operator=(const CXmlWriterContext&) = delete;

        // The default namespace and the map of the nearest context (this one or an ancestor)
        // that has a scope of its own.
        const std::string& GetDefaultNamespace() const;
        const NamespaceMap& GetNamespaceMap() const;
        // The prefix bound to `ns` in the effective map; empty when `ns` is unbound.
        std::string GetNamespaceMapValue(const std::string& ns) const;
        // The prefix bound to `ns` in the effective map, or null when `ns` is unbound. The
        // pointer is valid until the scope of this context changes.
        const std::string* FindNamespacePrefix(const std::string& ns) const;
        // Gives the context a scope of its own (a copy of the effective map) if it has none,
        // then sets its default namespace.
        void SetDefaultNamespace(const std::string& ns);
        // Gives the context a scope of its own (copies of the effective map and default
        // namespace) if it has none, then binds `ns` to `prefix` (inserting or replacing).
        void SetNamespaceMapValue(const std::string& ns, const std::string& prefix);

        const std::string& GetName() const;
        const std::string& GetNamespace() const;
        // 0 for the root element, parent's depth + 1 otherwise. Writers with another notion
        // of indentation may change it.
        int GetDepth() const;
        void SetDepth(int depth);
        // Number of child elements started inside this element so far.
        int GetChildCount() const;
        void IncrementChildCount();
        // True from the element's start until its start tag is closed by content or its end.
        bool IsStartTagOpen() const;
        void SetStartTagOpen(bool open);
        ContextState GetContextState() const;
        void SetContextState(ContextState state);
        // The enclosing context (null for the root), still owned by this context.
        CXmlWriterContext* GetParent() const;
        // Hands the enclosing context over to the caller; this context no longer owns it.
        CXmlWriterContext* DetachParent();
        // True while the context shares the scope of an ancestor.
        bool InheritsScope() const;
        // True when the context holds its own copy of the namespace map.
        bool OwnsMap() const;
        // Remembers the prefix the start tag wrote before the element's name (null: none), so
        // that the end tag can reuse it instead of resolving the namespace again.
        void RememberNamePrefix(const std::string* prefix);
        // The prefix given to RememberNamePrefix; false when none was given or when the
        // bindings in force have changed since (the name must then be resolved again).
        bool RecallNamePrefix(const std::string*& prefix) const;

    private:
        friend class CXmlWriter;

        // Records a change of this context's own bindings (default namespace, map or scope),
        // which outdates what was remembered or looked up under the old ones.
        void ScopeChanged();
        void TakeOwnScope(bool copyDefaultNamespace);
        // Makes a spare context a fresh child of `parent`, as the child constructor does.
        void ResetAsChild(const std::string& name, const std::string& ns,
                          CXmlWriterContext* parent);

        int m_childCount;
        bool m_startTagOpen;
        int m_depth;
        std::string m_namespace;
        std::string m_name;
        std::unique_ptr<CXmlWriterContext> m_parent;
        ContextState m_contextState;
        std::string m_defaultNamespace;
        // The effective map: m_ownMap when the context has its own scope, else an ancestor's.
        NamespaceMap* m_namespaceMap;
        std::unique_ptr<NamespaceMap> m_ownMap;
        // The context whose default namespace and map are in force here (this or an ancestor);
        // saves walking the chain on every lookup.
        CXmlWriterContext* m_scope;
        bool m_inheritsScope;
        bool m_ownsMap;
        // Counts the changes of this context's own bindings; never reset, so a remembered
        // (context, version) pair stays unambiguous when the context object is reused.
        unsigned long m_scopeVersion = 0;
        // The last FindNamespacePrefix answer under this context's own bindings (elements
        // mostly repeat their neighbours' namespace): valid while m_lookupVersion is current.
        mutable std::string m_lookupNamespace;
        mutable const std::string* m_lookupPrefix = nullptr;
        mutable unsigned long m_lookupVersion = 0;
        mutable bool m_lookupValid = false;
        // What RememberNamePrefix recorded, and under which bindings.
        const std::string* m_namePrefix = nullptr;
        const CXmlWriterContext* m_namePrefixScope = nullptr;
        unsigned long m_namePrefixVersion = 0;
        bool m_hasNamePrefix = false;
    };

    // `className` names the concrete writer for the instance monitor. The namespace map starts
    // with XML_NAMESPACE bound to "xml".
    explicit CXmlWriter(const char* className);
    // Deletes the open contexts, if any.
    virtual ~CXmlWriter();
    CXmlWriter(const CXmlWriter&) = delete;
    CXmlWriter& operator=(const CXmlWriter&) = delete;

    // Prepares the writer for a document; the base does nothing.
    virtual void Open();
    // Ends the document. Throws CKxException "An Element has not been closed." while an
    // element is still open.
    virtual void Close();
    // Before the root element: sets the writer's default namespace (declared on the root).
    // Inside an element: sets the current element's default namespace.
    virtual void SetDefaultNamespace(const std::string& ns);
    // Before the root element: binds `ns` to `prefix` in the writer's map (declared on the
    // root). Inside an element: binds it in the current element's scope.
    virtual void AddNamespace(const std::string& prefix, const std::string& ns);
    virtual void WriteComment(const std::string& text) = 0;
    // `text` is a whole processing instruction, delimiters included.
    virtual void WritePI(const std::string& text) = 0;
    virtual void WriteInlineSchema(const std::string& text) = 0;
    virtual void WriteStartElement(const std::string& name, const std::string& ns) = 0;
    // `isDefaultValue` marks a value equal to the schema default, which writers may skip.
    virtual void WriteString(const std::string& text, ItemType type, bool isDefaultValue) = 0;
    virtual void WriteEndElement() = 0;
    virtual void WriteAttributeString(const std::string& name, const std::string& ns,
                                      const std::string& value, ItemType type) = 0;
    // Writes the xsi:type attribute naming `typeName` in namespace `typeNs`.
    virtual void WriteAttributeType(const std::string& typeName, const std::string& typeNs,
                                    ItemType type) = 0;
    // Writes xsi:nil="true".
    virtual void WriteAttributeNil() = 0;

    // Sets the collection state of the current element; does nothing when no element is open.
    void SetContextState(ContextState state);
    // The first of AA, AB, ... (see NsIntToString) that is not a prefix (value) of `map`.
    static std::string GetUniquePrefix(const NamespaceMap& map);
    // Two letters: 'A' + n / 26 and 'A' + n % 26 (0 gives "AA", 26 gives "BA"). Not guarded
    // past 675, where characters after 'Z' appear.
    static std::string NsIntToString(int n);

    // The writer-level default namespace and map, as given before the root element.
    const std::string& GetDefaultNamespace() const;
    const NamespaceMap& GetNamespaceMap() const;

protected:
    // The line break of an EOL type ("\r\n" or "\n"); throws CKxException "Invalid EOL
    // type." for any other value.
    static const char* EndOfLineFor(EOLType type);
    // The innermost open element, or null.
    CXmlWriterContext* GetCurrentContext() const;
    // Opens a context for an element and makes it current: a root context built from the
    // writer's default namespace and map when no element is open, otherwise a child of the
    // current context. Returns the new context (owned by the writer).
    CXmlWriterContext* PushContext(const std::string& name, const std::string& ns);
    // Ends the current context and makes its parent current; does nothing when no element is
    // open. The ended context object is kept for reuse by a later PushContext, so pointers to
    // it must not be used after this call.
    void PopContext();

private:
    std::string m_defaultNamespace;
    NamespaceMap m_namespaceMap;
    std::unique_ptr<CXmlWriterContext> m_currentContext;
    // Ended contexts kept for reuse, so that a document costs no allocation per element once
    // its deepest level has been reached.
    std::vector<std::unique_ptr<CXmlWriterContext>> m_spareContexts;
};

}  // namespace KxXmlLib16

#endif
