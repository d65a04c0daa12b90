#pragma once
// One character as its UTF-8 bytes; empty when it stands for no character
// (a failed conversion, or the value 0).

#include <cstddef>
#include <string>
#include <vector>

class qvUtf8Char {
public:
    qvUtf8Char() = default;
    qvUtf8Char(const qvUtf8Char& other) = default;
    qvUtf8Char(qvUtf8Char&& other) noexcept = default;
    qvUtf8Char& operator=(const qvUtf8Char& other) = default;
    qvUtf8Char& operator=(qvUtf8Char&& other) noexcept = default;

    // A byte above 127 is read as Windows-1251, as old char literals were.
    qvUtf8Char(char c);
    qvUtf8Char(wchar_t c);
    qvUtf8Char(char16_t c);
    qvUtf8Char(char32_t c);

    std::string Str() const;
    void AppendString(const std::string& bytes);
    void AppendString(const char* bytes, size_t size);

    // True only for a single byte '0' to '9'.
    bool IsDigit() const;

    size_t Size() const { return m_bytes.size(); }
    bool Empty() const { return m_bytes.empty(); }
    const char* Data() const { return m_bytes.data(); }

    bool operator==(const qvUtf8Char& other) const;
    bool operator==(char c) const;
    bool operator==(wchar_t c) const;
    bool operator==(char16_t c) const;
    bool operator==(char32_t c) const;
    bool operator!=(const qvUtf8Char& other) const;
    bool operator!=(char c) const;
    bool operator!=(wchar_t c) const;
    bool operator!=(char16_t c) const;
    bool operator!=(char32_t c) const;

    // Byte order as unsigned values, a shorter prefix first: the order of the
    // separator sets.
    bool operator<(const qvUtf8Char& other) const;

private:
    std::vector<char> m_bytes;
};
