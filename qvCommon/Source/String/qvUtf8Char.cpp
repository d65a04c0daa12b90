#include "String/qvUtf8Char.h"

#include <cstring>

#include "String/qvString.h"

namespace {
void assign(std::vector<char>& bytes, const std::string& text) { bytes.assign(text.begin(), text.end()); }
}  // namespace

qvUtf8Char::qvUtf8Char(char c) {
    unsigned char byte = static_cast<unsigned char>(c);
    // ASCII reads the same in Windows-1251 and UTF-8: spare the two iconv
    // passes for the common case.
    if (byte > 0 && byte < 0x80) {
        m_bytes.push_back(c);
        return;
    }
    assign(m_bytes, qvString::AnsiToUtf8(std::string(1, c)));
}

qvUtf8Char::qvUtf8Char(wchar_t c) { assign(m_bytes, qvString::WstringToUtf8(std::wstring(1, c))); }

qvUtf8Char::qvUtf8Char(char16_t c) { assign(m_bytes, qvString::Utf16ToUtf8(std::u16string(1, c))); }

qvUtf8Char::qvUtf8Char(char32_t c) { assign(m_bytes, qvString::Utf32ToUtf8(std::u32string(1, c))); }

std::string qvUtf8Char::Str() const { return std::string(m_bytes.begin(), m_bytes.end()); }

void qvUtf8Char::AppendString(const std::string& bytes) {
    m_bytes.insert(m_bytes.end(), bytes.begin(), bytes.end());
}

void qvUtf8Char::AppendString(const char* bytes, size_t size) {
    if (bytes != nullptr) m_bytes.insert(m_bytes.end(), bytes, bytes + size);
}

bool qvUtf8Char::IsDigit() const { return m_bytes.size() == 1 && m_bytes[0] >= '0' && m_bytes[0] <= '9'; }

bool qvUtf8Char::operator==(const qvUtf8Char& other) const {
    return m_bytes.size() == other.m_bytes.size() &&
           (m_bytes.empty() || std::memcmp(m_bytes.data(), other.m_bytes.data(), m_bytes.size()) == 0);
}
bool qvUtf8Char::operator==(char c) const { return *this == qvUtf8Char(c); }
bool qvUtf8Char::operator==(wchar_t c) const { return *this == qvUtf8Char(c); }
bool qvUtf8Char::operator==(char16_t c) const { return *this == qvUtf8Char(c); }
bool qvUtf8Char::operator==(char32_t c) const { return *this == qvUtf8Char(c); }
bool qvUtf8Char::operator!=(const qvUtf8Char& other) const { return !(*this == other); }
bool qvUtf8Char::operator!=(char c) const { return !(*this == c); }
bool qvUtf8Char::operator!=(wchar_t c) const { return !(*this == c); }
bool qvUtf8Char::operator!=(char16_t c) const { return !(*this == c); }
bool qvUtf8Char::operator!=(char32_t c) const { return !(*this == c); }

bool qvUtf8Char::operator<(const qvUtf8Char& other) const {
    size_t common = m_bytes.size() < other.m_bytes.size() ? m_bytes.size() : other.m_bytes.size();
    int order = common == 0 ? 0 : std::memcmp(m_bytes.data(), other.m_bytes.data(), common);
    if (order != 0) return order < 0;
    return m_bytes.size() < other.m_bytes.size();
}
