#include "CKxException.h"

namespace KxXmlLib16 {

namespace {
const std::string kNoPath;
}

CKxException::CKxException() : m_inner(nullptr) {}

CKxException::CKxException(const std::string& message) : CKxException(message, kNoPath) {}

CKxException::CKxException(const std::string& message, const CKxException& inner)
    : CKxException(message, kNoPath, inner) {}

CKxException::CKxException(const std::string& message, const std::string& path)
    : m_message(message), m_inner(nullptr) {
    if (!path.empty()) {
        m_message += "\nPath: ";
        m_message += path;
        m_path = path;
    }
}

CKxException::CKxException(const std::string& message, const std::string& path,
                           const CKxException& inner)
    : CKxException(message, path) {
    m_inner = inner.Clone();
}

CKxException::CKxException(const CKxException& other)
    : m_message(other.m_message),
      m_path(other.m_path),
      m_inner(other.m_inner ? other.m_inner->Clone() : nullptr) {}

CKxException::~CKxException() {
    delete m_inner;
    m_inner = nullptr;
}

CKxException* CKxException::Clone() const { return new CKxException(*this); }

CKxException& CKxException::operator=(const CKxException& other) {
    if (this == &other) return *this;
    m_message = other.m_message;
    m_inner = other.m_inner ? other.m_inner->Clone() : nullptr;
    return *this;
}

std::string CKxException::GetMessage() const { return m_message; }

std::string CKxException::GetFullMessage() const {
    std::string text = m_message;
    for (const CKxException* cause = m_inner; cause != nullptr; cause = cause->m_inner) {
        text += '\n';
        text += cause->m_message;
    }
    return text;
}

std::string CKxException::GetPath() const { return m_path; }

const CKxException* CKxException::GetInnerException() const { return m_inner; }

// --- CKxValidationException ---

CKxValidationException::CKxValidationException() = default;
CKxValidationException::CKxValidationException(const CKxException& other) : CKxException(other) {}
CKxValidationException::CKxValidationException(const std::string& message, const std::string& path)
    : CKxException(message, path) {}
CKxValidationException::CKxValidationException(const std::string& message, const std::string& path,
                                               const CKxException& inner)
    : CKxException(message, path, inner) {}
CKxValidationException::CKxValidationException(const CKxValidationException& other) = default;
CKxValidationException::~CKxValidationException() = default;
CKxException* CKxValidationException::Clone() const { return new CKxValidationException(*this); }

// --- CKxInvalidValueException ---

CKxInvalidValueException::CKxInvalidValueException() = default;
CKxInvalidValueException::CKxInvalidValueException(const CKxException& other)
    : CKxValidationException(other) {}
CKxInvalidValueException::CKxInvalidValueException(const std::string& message)
    : CKxValidationException(message, std::string()) {}
CKxInvalidValueException::CKxInvalidValueException(const std::string& message,
                                                   const CKxException& inner)
    : CKxValidationException(message, std::string(), inner) {}
CKxInvalidValueException::~CKxInvalidValueException() = default;
CKxException* CKxInvalidValueException::Clone() const { return new CKxInvalidValueException(*this); }

// --- CKxInvalidNamespaceException ---

CKxInvalidNamespaceException::CKxInvalidNamespaceException() = default;
CKxInvalidNamespaceException::CKxInvalidNamespaceException(const CKxException& other)
    : CKxValidationException(other) {}
CKxInvalidNamespaceException::CKxInvalidNamespaceException(const std::string& message,
                                                           const std::string& path)
    : CKxValidationException(message, path) {}
CKxInvalidNamespaceException::CKxInvalidNamespaceException(const std::string& message,
                                                           const std::string& path,
                                                           const CKxException& inner)
    : CKxValidationException(message, path, inner) {}
CKxInvalidNamespaceException::~CKxInvalidNamespaceException() = default;
CKxException* CKxInvalidNamespaceException::Clone() const {
    return new CKxInvalidNamespaceException(*this);
}

// --- The classes that take a message without a path ---

#define KX_DEFINE_PLAIN_EXCEPTION(Name)                                                    \
    Name::Name() = default;                                                                \
    Name::Name(const CKxException& other) : CKxException(other) {}                         \
    Name::Name(const std::string& message) : CKxException(message) {}                      \
    Name::Name(const std::string& message, const CKxException& inner)                      \
        : CKxException(message, inner) {}                                                  \
    Name::~Name() = default;                                                               \
    CKxException* Name::Clone() const { return new Name(*this); }

KX_DEFINE_PLAIN_EXCEPTION(CKxInvalidStateException)
KX_DEFINE_PLAIN_EXCEPTION(CKxInvalidParamException)
KX_DEFINE_PLAIN_EXCEPTION(CKxOverFlowException)

#undef KX_DEFINE_PLAIN_EXCEPTION

}  // namespace KxXmlLib16
