#include "CBinaryData.h"

#include <cstring>
#include <memory>
#include <ostream>

#include "CBase64.h"
#include "CKxException.h"
#include "FormatString.h"
#include "CBinaryDataHolder.h"

namespace KxXmlLib16 {

// ---------------------------------------------------------------------------------------------
// CDataHolder

CBinaryData::CDataHolder::CDataHolder(unsigned char* data, unsigned long length,
                                      unsigned long capacity)
    : m_data(data), m_length(length), m_capacity(capacity), m_refCount(1), m_spare(0) {}

CBinaryData::CDataHolder::~CDataHolder() { delete[] m_data; }

unsigned long CBinaryData::CDataHolder::CopyCapacity(unsigned long length) {
    int capacity = static_cast<int>(length * 2);
    if (capacity < 8192) {
        capacity = 8192;
    }
    const unsigned long room = static_cast<unsigned long>(capacity);
    return room < length ? length : room;
}

CBinaryData::CDataHolder* CBinaryData::CDataHolder::Adopt(unsigned char* data,
                                                          unsigned long length) {
    try {
        return new CDataHolder(data, length, length);
    } catch (...) {
        delete[] data;
        throw;
    }
}

CBinaryData::CDataHolder* CBinaryData::CDataHolder::Copy(const unsigned char* data,
                                                         unsigned long length) {
    const unsigned long capacity = CopyCapacity(length);
    std::unique_ptr<unsigned char[]> buffer(new unsigned char[capacity]);
    std::memcpy(buffer.get(), data, length);
    CDataHolder* holder = new CDataHolder(buffer.get(), length, capacity);
    buffer.release();
    return holder;
}

void CBinaryData::CDataHolder::AddRef() {
    CKXLock lock(m_lock);
    ++m_refCount;
}

void CBinaryData::CDataHolder::Release(bool keepData) {
    m_lock.Enter();
    if (m_refCount > 1) {
        if (keepData) {
            // The caller keeps its reference: it still owns a share of the bytes.
            const long remaining = m_refCount - 1;
            m_lock.Leave();
            throw CKxException(
                FormatString("Failed to release data. [RefCount=%d]", static_cast<int>(remaining)));
        }
        --m_refCount;
        m_lock.Leave();
        return;
    }
    m_refCount = 0;
    if (keepData) {
        m_data = nullptr;
    }
    // The mutex must not be destroyed while it is held.
    m_lock.Leave();
    delete this;
}

bool CBinaryData::CDataHolder::TryAppendInPlace(const unsigned char* bytes, unsigned long n) {
    if (!IsExclusive() || n > m_capacity - m_length) {
        return false;
    }
    // No other value can reach the bytes, so there is nothing to lock against; this keeps
    // appends of single bytes cheap.
    if (n == 1) {
        m_data[m_length] = *bytes;
    } else {
        std::memmove(m_data + m_length, bytes, n);
    }
    m_length += n;
    return true;
}

void CBinaryData::CDataHolder::Append(const unsigned char* bytes, unsigned long n) {
    CKXLock lock(m_lock);
    if (m_refCount >= 2) {
        throw CKxException(
            FormatString("Failed to append. [RefCount=%d]", static_cast<int>(m_refCount.load())));
    }
    if (m_length + n > m_capacity) {
        const unsigned long capacity = (m_length + n) * 2;
        unsigned char* grown = new unsigned char[capacity];
        std::memcpy(grown, m_data, m_length);
        // Copy the new bytes before the old array goes: they may come from it.
        std::memcpy(grown + m_length, bytes, n);
        delete[] m_data;
        m_data = grown;
        m_capacity = capacity;
    } else {
        std::memmove(m_data + m_length, bytes, n);
    }
    m_length += n;
}

CBinaryData::CDataHolder* CBinaryData::CDataHolder::GetExclusiveCopy() {
    if (IsExclusive()) {
        return this;
    }
    CKXLock lock(m_lock);
    if (m_refCount < 2) {
        return this;
    }
    CDataHolder* copy = Copy(m_data, m_length);
    // Still shared by others, so this only lowers the count (re-entering the lock).
    Release(false);
    return copy;
}

// ---------------------------------------------------------------------------------------------
// CBinaryData

CBinaryData::CBinaryData() : m_holder(nullptr) {}

CBinaryData::CBinaryData(const CBinaryData& other) : m_holder(other.m_holder) {
    if (m_holder != nullptr) {
        m_holder->AddRef();
    }
}

CBinaryData::CBinaryData(const unsigned char* data, unsigned long length, bool adopt)
    : m_holder(nullptr) {
    if (adopt) {
        // Ownership of the array passes to this value, even when it holds nothing.
        unsigned char* owned = const_cast<unsigned char*>(data);
        if (length == 0) {
            delete[] owned;
        } else {
            m_holder = CDataHolder::Adopt(owned, length);
        }
    } else if (length != 0) {
        m_holder = CDataHolder::Copy(data, length);
    }
}

CBinaryData::CBinaryData(const char* text) : m_holder(nullptr) { SetBuffer(text); }

CBinaryData::~CBinaryData() { Clear(); }

CBinaryData& CBinaryData::operator=(const CBinaryData& other) {
    if (other.m_holder != m_holder) {
        Clear();
        m_holder = other.m_holder;
        if (m_holder != nullptr) {
            m_holder->AddRef();
        }
    }
    return *this;
}

void CBinaryData::Clear() {
    if (m_holder != nullptr) {
        CDataHolder* holder = m_holder;
        m_holder = nullptr;
        holder->Release(false);
    }
}

void CBinaryData::SetBuffer(const unsigned char* data, unsigned long length) {
    Clear();
    if (length != 0) {
        m_holder = CDataHolder::Copy(data, length);
    }
}

void CBinaryData::SetBuffer(const char* text) {
    SetBuffer(reinterpret_cast<const unsigned char*>(text),
              text != nullptr ? std::strlen(text) : 0);
}

const unsigned char* CBinaryData::GetData() const {
    return m_holder != nullptr ? m_holder->GetData() : nullptr;
}

unsigned long CBinaryData::GetLength() const {
    return m_holder != nullptr ? m_holder->GetLength() : 0;
}

void CBinaryData::MakeExclusive() { m_holder = m_holder->GetExclusiveCopy(); }

unsigned char& CBinaryData::operator[](unsigned long i) {
    if (m_holder == nullptr || i > m_holder->GetLength()) {
        throw CKxException(FormatString("Index Out of range [%d]", static_cast<int>(i)));
    }
    MakeExclusive();
    if (i == m_holder->GetLength()) {
        return m_holder->GetSpareByte();
    }
    return m_holder->GetData()[i];
}

const unsigned char& CBinaryData::operator[](unsigned long i) const {
    if (m_holder == nullptr || i > m_holder->GetLength()) {
        throw CKxException(FormatString("Index Out of range [%d]", static_cast<int>(i)));
    }
    if (i == m_holder->GetLength()) {
        return m_holder->GetSpareByte();
    }
    return m_holder->GetData()[i];
}

void CBinaryData::Append(const unsigned char* data, unsigned long length) {
    if (length == 0) {
        return;
    }
    if (m_holder == nullptr) {
        m_holder = CDataHolder::Copy(data, length);
        return;
    }
    if (!m_holder->TryAppendInPlace(data, length)) {
        MakeExclusive();
        m_holder->Append(data, length);
    }
}

void CBinaryData::Append(unsigned char byte) { Append(&byte, 1); }

void CBinaryData::Append(char byte) { Append(reinterpret_cast<const unsigned char*>(&byte), 1); }

void CBinaryData::Append(const char* text) {
    if (text != nullptr) {
        Append(reinterpret_cast<const unsigned char*>(text), std::strlen(text));
    }
}

void CBinaryData::Append(const std::string& text) { Append(text.c_str()); }

void CBinaryData::Append(const CBinaryData& other) {
    // Safe when `other` is this value or shares its holder: the holder copies the new bytes
    // before it frees a buffer it outgrows, and a shared holder outlives the private copy.
    Append(other.GetData(), other.GetLength());
}

unsigned char* CBinaryData::ReleaseData() {
    if (m_holder == nullptr) {
        return nullptr;
    }
    MakeExclusive();
    unsigned char* data = m_holder->GetData();
    m_holder->Release(true);
    m_holder = nullptr;
    return data;
}

bool CBinaryData::operator==(const CBinaryData& other) const {
    if (m_holder == other.m_holder) {
        return true;
    }
    const unsigned long length = GetLength();
    if (length != other.GetLength()) {
        return false;
    }
    return length == 0 || std::memcmp(GetData(), other.GetData(), length) == 0;
}

bool CBinaryData::operator!=(const CBinaryData& other) const { return !(*this == other); }

std::string CBinaryData::GetAsHexString() const { return GetAsHexString(GetData(), GetLength()); }

std::string CBinaryData::GetAsHexString(const unsigned char* data, unsigned long length) {
    static const char digits[] = "0123456789ABCDEF";
    if (data == nullptr) {
        return std::string();
    }
    std::string text(length * 2, '\0');
    for (unsigned long i = 0; i < length; ++i) {
        text[2 * i] = digits[data[i] >> 4];
        text[2 * i + 1] = digits[data[i] & 0x0F];
    }
    return text;
}

namespace {

int HexDigitValue(char c) {
    if (c >= '0' && c <= '9') {
        return c - '0';
    }
    if (c >= 'A' && c <= 'F') {
        return c - 'A' + 10;
    }
    if (c >= 'a' && c <= 'f') {
        return c - 'a' + 10;
    }
    throw CKxException(FormatString("Invalid char in hex string [%c]", c));
}

}  // namespace

unsigned long CBinaryData::ConvertToHexData(const char* text, unsigned char** out) {
    const unsigned long length = text != nullptr ? std::strlen(text) : 0;
    if (length % 2 != 0) {
        throw CKxException("Invalid length in hex string");
    }
    const unsigned long count = length / 2;
    std::unique_ptr<unsigned char[]> bytes(new unsigned char[count]);
    for (unsigned long i = 0; i < count; ++i) {
        const int high = HexDigitValue(text[2 * i]);
        const int low = HexDigitValue(text[2 * i + 1]);
        bytes[i] = static_cast<unsigned char>((high << 4) | low);
    }
    *out = bytes.release();
    return count;
}

void CBinaryData::SetAsHexString(const char* text) {
    Clear();
    unsigned char* bytes = nullptr;
    const unsigned long count = ConvertToHexData(text, &bytes);
    *this = CBinaryData(bytes, count, true);
}

std::string CBinaryData::GetAsBase64() const {
    if (m_holder == nullptr) {
        return std::string();
    }
    CBase64 coder;
    return coder.Encode(GetData(), static_cast<int>(GetLength()));
}

void CBinaryData::SetAsBase64(const char* text) {
    Clear();
    if (text == nullptr || *text == '\0') {
        return;
    }
    std::unique_ptr<unsigned char[]> bytes(new unsigned char[std::strlen(text) + 1]);
    CBase64 coder;
    const int count = coder.Decode(text, bytes.get());
    *this = CBinaryData(bytes.release(), static_cast<unsigned long>(count), true);
}

std::ostream& operator<<(std::ostream& os, const CBinaryData& value) {
    return os << "CBinaryData[" << value.GetLength() << "] " << value.GetAsHexString();
}

}  // namespace KxXmlLib16
