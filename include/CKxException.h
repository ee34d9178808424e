// The exception family: every failure of the library is thrown as one of these, by value.
#ifndef KX_CKXEXCEPTION_H
#define KX_CKXEXCEPTION_H

#include <string>

#include "KxConfig.h"

namespace KxXmlLib16 {

// Root of the family: a message, an optional path (where the fault lies) and an optional inner
// exception (the cause). A non-empty path is also appended to the message after "\nPath: ".
class KX_EXPORT CKxException {
public:
    CKxException();
    explicit CKxException(const std::string& message);
    CKxException(const std::string& message, const CKxException& inner);
    CKxException(const std::string& message, const std::string& path);
    CKxException(const std::string& message, const std::string& path, const CKxException& inner);
    CKxException(const CKxException& other);
    virtual ~CKxException();

    // A heap copy of the same dynamic class, inner exception cloned; the caller owns it.
    virtual CKxException* Clone() const;

    // Copies the message and replaces the inner exception by a clone of the other's. The path is
    // left as it was, and the inner exception held before is not deleted: both on purpose.
    CKxException& operator=(const CKxException& other);

    std::string GetMessage() const;
    // The message, then each inner exception's full message on its own line, outermost first.
    std::string GetFullMessage() const;
    // The path as given, without the "\nPath: " prefix.
    std::string GetPath() const;
    const CKxException* GetInnerException() const;

private:
    std::string m_message;
    std::string m_path;
    CKxException* m_inner;
};

// Data that breaks the schema: structure, occurrences, facets, unknown elements, bad JSON.
class KX_EXPORT CKxValidationException : public CKxException {
public:
    CKxValidationException();
    explicit CKxValidationException(const CKxException& other);
    CKxValidationException(const std::string& message, const std::string& path);
    CKxValidationException(const std::string& message, const std::string& path,
                           const CKxException& inner);
    CKxValidationException(const CKxValidationException& other);
    ~CKxValidationException() override;
    CKxException* Clone() const override;

private:
    std::string m_spare;  // carried along by copies; the library never sets it
};

// A lexical value that cannot be converted.
class KX_EXPORT CKxInvalidValueException : public CKxValidationException {
public:
    CKxInvalidValueException();
    explicit CKxInvalidValueException(const CKxException& other);
    explicit CKxInvalidValueException(const std::string& message);
    CKxInvalidValueException(const std::string& message, const CKxException& inner);
    CKxInvalidValueException(const CKxInvalidValueException& other) = default;
    ~CKxInvalidValueException() override;
    CKxException* Clone() const override;
};

// An element or attribute in the wrong namespace.
class KX_EXPORT CKxInvalidNamespaceException : public CKxValidationException {
public:
    CKxInvalidNamespaceException();
    explicit CKxInvalidNamespaceException(const CKxException& other);
    CKxInvalidNamespaceException(const std::string& message, const std::string& path);
    CKxInvalidNamespaceException(const std::string& message, const std::string& path,
                                 const CKxException& inner);
    CKxInvalidNamespaceException(const CKxInvalidNamespaceException& other) = default;
    ~CKxInvalidNamespaceException() override;
    CKxException* Clone() const override;
};

// An operation on an object in the wrong state.
class KX_EXPORT CKxInvalidStateException : public CKxException {
public:
    CKxInvalidStateException();
    explicit CKxInvalidStateException(const CKxException& other);
    explicit CKxInvalidStateException(const std::string& message);
    CKxInvalidStateException(const std::string& message, const CKxException& inner);
    CKxInvalidStateException(const CKxInvalidStateException& other) = default;
    ~CKxInvalidStateException() override;
    CKxException* Clone() const override;
};

// A bad argument: index out of range, null object, bad option value.
class KX_EXPORT CKxInvalidParamException : public CKxException {
public:
    CKxInvalidParamException();
    explicit CKxInvalidParamException(const CKxException& other);
    explicit CKxInvalidParamException(const std::string& message);
    CKxInvalidParamException(const std::string& message, const CKxException& inner);
    CKxInvalidParamException(const CKxInvalidParamException& other) = default;
    ~CKxInvalidParamException() override;
    CKxException* Clone() const override;
};

// Arithmetic overflow in the decimal type.
class KX_EXPORT CKxOverFlowException : public CKxException {
public:
    CKxOverFlowException();
    explicit CKxOverFlowException(const CKxException& other);
    explicit CKxOverFlowException(const std::string& message);
    CKxOverFlowException(const std::string& message, const CKxException& inner);
    CKxOverFlowException(const CKxOverFlowException& other) = default;
    ~CKxOverFlowException() override;
    CKxException* Clone() const override;
};

}  // namespace KxXmlLib16

#endif
