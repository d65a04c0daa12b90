#include "String/qvUtf8String.h"

#include <cctype>
#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <cwchar>
#include <iomanip>
#include <sstream>

#include "String/qvStringHelpers.h"

namespace {

// The outcome of walking a string character by character from its first
// byte. `starts` holds the byte offset of each character walked; `end` is
// where the walk stopped; `invalidStop` tells a stop on a byte that cannot
// lead a sequence from a stop on a NUL or the end of the bytes. A string whose
// last sequence runs past its bytes maps to no character at all.
struct CharMap {
    std::vector<size_t> starts;
    size_t end = 0;
    bool invalidStop = false;
    bool cut = false;

    size_t count() const { return starts.size(); }
    size_t offsetOf(size_t index) const { return index < starts.size() ? starts[index] : end; }
    size_t sizeOf(size_t index) const { return offsetOf(index + 1) - starts[index]; }
};

CharMap mapChars(const std::string& text) {
    CharMap map;
    const char* bytes = text.c_str();
    size_t size = text.size();
    size_t pos = 0;
    while (pos < size) {
        size_t n = qvUtf8String::CharSize(bytes + pos);
        if (n == 0) {
            map.invalidStop = bytes[pos] != '\0';
            break;
        }
        if (pos + n > size) {
            // Cut-off last sequence: the character operations see nothing.
            map.starts.clear();
            map.end = 0;
            map.invalidStop = false;
            map.cut = true;
            return map;
        }
        map.starts.push_back(pos);
        pos += n;
    }
    map.end = pos;
    return map;
}

// Character index of a byte offset that starts a walked character, else npos.
size_t indexOfOffset(const CharMap& map, size_t offset) {
    size_t low = 0;
    size_t high = map.starts.size();
    while (low < high) {
        size_t mid = low + (high - low) / 2;
        if (map.starts[mid] < offset) {
            low = mid + 1;
        } else {
            high = mid;
        }
    }
    return low < map.starts.size() && map.starts[low] == offset ? low : qvUtf8String::npos;
}

std::string cutAtNul(const std::string& bytes) {
    size_t nul = bytes.find('\0');
    return nul == std::string::npos ? bytes : bytes.substr(0, nul);
}

}  // namespace

// ---- construction -----------------------------------------------------------

qvUtf8String::qvUtf8String(const char* text, size_t length) {
    if (text == nullptr) return;
    if (length == npos) length = std::strlen(text);
    m_str.assign(text, length);
}

qvUtf8String::qvUtf8String(const std::string& text) : m_str(text) {}

qvUtf8String::qvUtf8String(const qvUtf8Ptr& text) : m_str(text.c_str()) {}

qvUtf8String::qvUtf8String(const qvAnsiPtr& text) : m_str(qvString::AnsiToUtf8(text.c_str())) {}

qvUtf8String::qvUtf8String(const char16_t* text, size_t length) {
    if (text == nullptr) return;
    if (length == npos) length = w16_strlen(text);
    m_str = qvString::Utf16ToUtf8(std::u16string(text, length));
}

qvUtf8String::qvUtf8String(const std::u16string& text) : m_str(qvString::Utf16ToUtf8(text)) {}

qvUtf8String::qvUtf8String(const wchar_t* text, size_t length) {
    if (text == nullptr) return;
    if (length == npos) length = std::wcslen(text);
    m_str = qvString::WstringToUtf8(std::wstring(text, length));
}

qvUtf8String::qvUtf8String(const std::wstring& text) : m_str(qvString::WstringToUtf8(text)) {}

qvUtf8String::qvUtf8String(const qvUtf8Char& c) : m_str(c.Data(), c.Size()) {}

qvUtf8String::qvUtf8String(const qvUtf8Char& c, size_t count) {
    m_str.reserve(c.Size() * count);
    for (size_t i = 0; i < count; ++i) m_str.append(c.Data(), c.Size());
}

void qvUtf8String::MoveFromUtf8String(std::string& source) {
    m_str = std::move(source);
    source.clear();
}

// ---- bytes out ----------------------------------------------------------------

std::string qvUtf8String::ToAnsi() const { return qvString::Utf8ToAnsi(m_str); }

std::wstring qvUtf8String::ToWstring() const { return qvString::Utf8ToWstring(m_str); }

std::wstring qvUtf8String::ToStdWstring() const { return qvString::Utf8ToWstring(m_str); }

// ---- counting and addressing --------------------------------------------------

size_t qvUtf8String::CharSize(const char* p) {
    if (p == nullptr) return 0;
    unsigned char lead = static_cast<unsigned char>(*p);
    if (lead == 0) return 0;
    if ((lead & 0x80) == 0x00) return 1;
    if ((lead & 0xE0) == 0xC0) return 2;
    if ((lead & 0xF0) == 0xE0) return 3;
    if ((lead & 0xF8) == 0xF0) return 4;
    return 0;
}

size_t qvUtf8String::Length() const { return mapChars(m_str).count(); }

bool qvUtf8String::Empty() const { return Length() == 0; }

size_t qvUtf8String::SizeOf(size_t index) const {
    CharMap map = mapChars(m_str);
    return index < map.count() ? map.sizeOf(index) : 0;
}

size_t qvUtf8String::OffsetOf(size_t index) const {
    CharMap map = mapChars(m_str);
    return index < map.count() ? map.starts[index] : 0;
}

size_t qvUtf8String::PosToBitPos(size_t index) const {
    CharMap map = mapChars(m_str);
    if (index < map.count()) return map.starts[index];
    return map.invalidStop ? npos : map.end;
}

size_t qvUtf8String::PtrToPos(const char* pointer) const {
    const char* base = m_str.c_str();
    if (pointer < base || pointer > base + m_str.size()) return npos;
    return indexOfOffset(mapChars(m_str), static_cast<size_t>(pointer - base));
}

qvUtf8Char qvUtf8String::CharAt(size_t index) const {
    qvUtf8Char c;
    CharMap map = mapChars(m_str);
    if (index < map.count()) c.AppendString(m_str.data() + map.starts[index], map.sizeOf(index));
    return c;
}

qvUtf8Char qvUtf8String::operator[](size_t index) const { return CharAt(index); }

qvUtf8Char qvUtf8String::at(size_t index) const { return CharAt(index); }

qvUtf8Char qvUtf8String::LastChar() const {
    size_t length = Length();
    return length == 0 ? qvUtf8Char() : CharAt(length - 1);
}

qvUtf8Char qvUtf8String::Last() const { return LastChar(); }

// ---- editing in place -----------------------------------------------------------

bool qvUtf8String::RemoveAt(size_t index) {
    CharMap map = mapChars(m_str);
    if (index >= map.count()) return false;
    m_str.erase(map.starts[index], map.sizeOf(index));
    return true;
}

bool qvUtf8String::InsertAt(size_t index, const qvUtf8Char& c) {
    if (index == npos) {
        m_str.append(c.Data(), c.Size());
        return true;
    }
    CharMap map = mapChars(m_str);
    if (index > map.count()) return false;
    m_str.insert(map.offsetOf(index), c.Data(), c.Size());
    return true;
}

bool qvUtf8String::ReplaceAt(size_t index, const qvUtf8Char& c) {
    CharMap map = mapChars(m_str);
    if (index >= map.count()) return false;
    m_str.replace(map.starts[index], map.sizeOf(index), c.Data(), c.Size());
    return true;
}

void qvUtf8String::Clear() { m_str.clear(); }

void qvUtf8String::ToLowerCase() & { m_str = qvString::Utf8ToLower(m_str); }

void qvUtf8String::ToUpperCase() & { m_str = qvString::Utf8ToUpper(m_str); }

qvUtf8String qvUtf8String::ToLowerCase() const& { return qvUtf8String(qvString::Utf8ToLower(m_str)); }

qvUtf8String qvUtf8String::ToUpperCase() const& { return qvUtf8String(qvString::Utf8ToUpper(m_str)); }

qvUtf8String qvUtf8String::ToLowerCase() && { return qvUtf8String(qvString::Utf8ToLower(m_str)); }

qvUtf8String qvUtf8String::ToUpperCase() && { return qvUtf8String(qvString::Utf8ToUpper(m_str)); }

void qvUtf8String::TrimLeft(const qvUtf8Char& c) {
    CharMap map = mapChars(m_str);
    if (map.cut) {
        // A cut-off string has no characters to keep.
        m_str.clear();
        return;
    }
    if (c.Empty()) return;
    size_t lead = 0;
    while (lead < map.count() && map.sizeOf(lead) == c.Size() &&
           m_str.compare(map.starts[lead], c.Size(), c.Data(), c.Size()) == 0) {
        ++lead;
    }
    if (lead > 0) m_str.erase(0, map.offsetOf(lead));
}

void qvUtf8String::TrimRight(const qvUtf8Char& c) {
    if (c.Empty()) return;
    CharMap map = mapChars(m_str);
    size_t keep = map.count();
    while (keep > 0 && map.sizeOf(keep - 1) == c.Size() &&
           m_str.compare(map.starts[keep - 1], c.Size(), c.Data(), c.Size()) == 0) {
        --keep;
    }
    if (keep < map.count()) m_str.erase(map.offsetOf(keep), map.end - map.offsetOf(keep));
}

void qvUtf8String::Trim(const qvUtf8Char& c) {
    TrimLeft(c);
    TrimRight(c);
}

void qvUtf8String::TrimRightAll() {
    TrimRight(qvUtf8Char('\t'));
    TrimRight(qvUtf8Char('\n'));
    TrimRight(qvUtf8Char('\r'));
    TrimRight(qvUtf8Char(' '));
}

void qvUtf8String::Remove(const qvUtf8Char& c) { Replace(c, qvUtf8Char()); }

void qvUtf8String::Replace(const qvUtf8Char& from, const qvUtf8Char& to) {
    if (from.Empty() || from == to) return;
    CharMap map = mapChars(m_str);
    std::string out;
    out.reserve(m_str.size());
    for (size_t i = 0; i < map.count(); ++i) {
        size_t size = map.sizeOf(i);
        if (size == from.Size() && m_str.compare(map.starts[i], size, from.Data(), size) == 0) {
            out.append(to.Data(), to.Size());
        } else {
            out.append(m_str, map.starts[i], size);
        }
    }
    // Whatever follows the walk (an invalid byte, a NUL) stays as it was.
    out.append(m_str, map.end, std::string::npos);
    m_str.swap(out);
}

bool qvUtf8String::ReplaceString(const qvUtf8String& from, const qvUtf8String& to) {
    if (from.m_str.empty()) return false;
    bool replaced = false;
    size_t pos = 0;
    while ((pos = m_str.find(from.m_str, pos)) != std::string::npos) {
        m_str.replace(pos, from.m_str.size(), to.m_str);
        pos += to.m_str.size();
        replaced = true;
    }
    return replaced;
}

void qvUtf8String::FilterNonPrintableChars() {
    std::string out;
    out.reserve(m_str.size());
    for (char byte : m_str) {
        if (std::isprint(static_cast<unsigned char>(byte))) out.push_back(byte);
    }
    m_str.swap(out);
}

qvUtf8String& qvUtf8String::Append(const qvUtf8String& text) {
    m_str.append(text.m_str.c_str());
    return *this;
}

// ---- search -----------------------------------------------------------------------

bool qvUtf8String::StartsWith(const qvUtf8String& x) const {
    if (x.m_str.empty()) return true;
    return m_str.compare(0, x.m_str.size(), x.m_str) == 0;
}

bool qvUtf8String::EndsWith(const qvUtf8String& x) const {
    size_t length = Length();
    size_t xLength = x.Length();
    if (xLength > length) return false;
    size_t pos = m_str.rfind(x.m_str);
    if (pos == std::string::npos) return false;
    // A byte offset against a character count: kept as the product has
    // always answered, so any multi-byte character before the suffix says no.
    return pos == length - xLength;
}

bool qvUtf8String::Includes(const qvUtf8String& x, size_t start) const {
    if (start >= Length()) return false;
    return IndexOf(x, start) != npos;
}

size_t qvUtf8String::IndexOf(const qvUtf8String& x, size_t start) const {
    CharMap map = mapChars(m_str);
    if (start >= map.count()) return npos;
    size_t pos = m_str.find(x.m_str, map.starts[start]);
    return pos == std::string::npos ? npos : indexOfOffset(map, pos);
}

size_t qvUtf8String::LastIndexOf(const qvUtf8String& x, size_t limit) const {
    // An empty x found at the very end does not start a character: npos.
    size_t pos = m_str.rfind(x.m_str, limit);
    return pos == std::string::npos ? npos : indexOfOffset(mapChars(m_str), pos);
}

bool qvUtf8String::IsEqual(const qvUtf8String& x) const { return m_str == x.m_str; }

bool qvUtf8String::IsEqualNoCase(const qvUtf8String& x) const {
    return qvString::Utf8ToLower(m_str) == qvString::Utf8ToLower(x.m_str);
}

size_t qvUtf8String::find_first_of(const qvUtf8String& x, size_t start) const { return IndexOf(x, start); }

size_t qvUtf8String::find_first_of(char c, size_t start) const {
    return IndexOf(qvUtf8String(qvUtf8Char(c)), start);
}

size_t qvUtf8String::find_last_of(const qvUtf8String& x, size_t) const { return LastIndexOf(x); }

size_t qvUtf8String::find_last_of(char c, size_t) const { return LastIndexOf(qvUtf8String(qvUtf8Char(c))); }

size_t qvUtf8String::Find(const qvUtf8Char& c, bool fromEnd) const {
    return fromEnd ? LastIndexOf(qvUtf8String(c)) : IndexOf(qvUtf8String(c));
}

// ---- pieces -------------------------------------------------------------------------

qvUtf8String qvUtf8String::Substr(size_t start, size_t count) const {
    CharMap map = mapChars(m_str);
    if (start >= map.count()) return qvUtf8String();
    size_t first = map.starts[start];
    size_t last = (count == npos || count >= map.count() - start) ? m_str.size() : map.starts[start + count];
    return qvUtf8String(cutAtNul(m_str.substr(first, last - first)));
}

qvUtf8String qvUtf8String::SubstrToIndex(size_t first, size_t last) const {
    return Substr(first, last - first + 1);
}

qvUtf8String qvUtf8String::Left(size_t n) const { return Substr(0, n); }

qvUtf8String qvUtf8String::Right(size_t n) const { return Substr(Size() - n, npos); }

qvUtf8String qvUtf8String::AfterFirst(const qvUtf8Char& c) const {
    size_t index = IndexOf(qvUtf8String(c));
    return index == npos ? qvUtf8String() : Substr(index);
}

std::vector<qvUtf8String> qvUtf8String::Split(const qvUtf8String& separators) const {
    std::set<qvUtf8Char> set;
    CharMap map = mapChars(separators.m_str);
    for (size_t i = 0; i < map.count(); ++i) {
        qvUtf8Char c;
        c.AppendString(separators.m_str.data() + map.starts[i], map.sizeOf(i));
        set.insert(c);
    }
    return Split(set);
}

std::vector<qvUtf8String> qvUtf8String::Split(const std::set<qvUtf8Char>& separators) const {
    std::vector<qvUtf8String> fields;
    CharMap map = mapChars(m_str);
    if (map.count() == 0) return fields;
    std::string field;
    for (size_t i = 0; i < map.count(); ++i) {
        qvUtf8Char c;
        c.AppendString(m_str.data() + map.starts[i], map.sizeOf(i));
        if (separators.count(c) != 0) {
            fields.emplace_back(field);
            field.clear();
        } else {
            field.append(c.Data(), c.Size());
        }
    }
    fields.emplace_back(field);
    return fields;
}

qvUtf8String qvUtf8String::Join(const std::vector<qvUtf8String>& list, const qvUtf8Char& separator) {
    qvUtf8String out;
    for (size_t i = 0; i < list.size(); ++i) {
        if (i > 0) out.m_str.append(separator.Data(), separator.Size());
        out.m_str += list[i].m_str;
    }
    return out;
}

// ---- numbers ----------------------------------------------------------------------------

bool qvUtf8String::IsNumber(bool allowNegative, bool allowDecimal, char decimalChar) const {
    CharMap map = mapChars(m_str);
    if (map.count() == 0) return false;
    size_t i = 0;
    if (allowNegative && map.sizeOf(0) == 1 && m_str[0] == '-') {
        ++i;
        if (i == map.count()) return false;
    }
    qvUtf8Char decimal(decimalChar);
    for (; i < map.count(); ++i) {
        qvUtf8Char c;
        c.AppendString(m_str.data() + map.starts[i], map.sizeOf(i));
        if (c.IsDigit()) continue;
        if (allowDecimal && c == decimal) continue;
        return false;
    }
    return true;
}

bool qvUtf8String::IsInt() const { return IsNumber(true, false, '.'); }

bool qvUtf8String::IsUInt() const { return IsNumber(false, false, '.'); }

bool qvUtf8String::IsFloat(char decimalChar) const { return IsNumber(true, true, decimalChar); }

bool qvUtf8String::ToInt(long& out) const {
    const char* text = m_str.c_str();
    char* end = nullptr;
    out = std::strtol(text, &end, 10);
    return end != text && *end == '\0';
}

bool qvUtf8String::ToDouble(double& out) const {
    const char* text = m_str.c_str();
    char* end = nullptr;
    out = std::strtod(text, &end);
    if (end == text || *end != '\0') return false;
    return !(std::isinf(out) && out > 0);
}

qvUtf8String qvUtf8String::DoubleToString(double value, int precision) {
    std::ostringstream stream;
    stream << std::fixed << std::setprecision(precision) << value;
    return qvUtf8String(stream.str());
}

// ---- validation ---------------------------------------------------------------------------

const char* qvUtf8String::Verify(const char* text) {
    if (text == nullptr) return nullptr;
    const unsigned char* p = reinterpret_cast<const unsigned char*>(text);
    auto continuation = [](unsigned char b) { return (b & 0xC0) == 0x80; };
    while (*p) {
        unsigned char lead = p[0];
        if (lead < 0x80) {
            ++p;
            continue;
        }
        const char* bad = reinterpret_cast<const char*>(p);
        if (lead < 0xC2 || lead > 0xF4) return bad;  // stray continuation, overlong 2-byte, past U+10FFFF
        if (lead < 0xE0) {
            if (!continuation(p[1])) return bad;
            p += 2;
            continue;
        }
        // Each check reads one byte further only once the byte before it
        // proved not to be the terminator.
        unsigned char second = p[1];
        if (!continuation(second)) return bad;
        if (lead == 0xE0 && second < 0xA0) return bad;  // overlong
        if (lead == 0xED && second >= 0xA0) return bad;  // surrogates
        if (lead == 0xF0 && second < 0x90) return bad;  // overlong
        if (lead == 0xF4 && second > 0x8F) return bad;  // above U+10FFFF
        if (!continuation(p[2])) return bad;
        if (lead < 0xF0) {
            if (lead == 0xEF && second == 0xBF && (p[2] == 0xBE || p[2] == 0xBF)) return bad;  // U+FFFE, U+FFFF
            p += 3;
            continue;
        }
        if (!continuation(p[3])) return bad;
        p += 4;
    }
    return nullptr;
}

bool qvUtf8String::Valid(const char* text) { return Verify(text) == nullptr; }

bool qvUtf8String::Valid(const std::string& text) { return Verify(text.c_str()) == nullptr; }

// ---- overload families ----------------------------------------------------------------------

#define QV_UTF8STRING_FAMILY_IMPL(T)                                                                    \
    bool qvUtf8String::StartsWith(T x) const { return StartsWith(qvUtf8String(x)); }                     \
    bool qvUtf8String::EndsWith(T x) const { return EndsWith(qvUtf8String(x)); }                         \
    bool qvUtf8String::Includes(T x, size_t start) const { return Includes(qvUtf8String(x), start); }    \
    size_t qvUtf8String::IndexOf(T x, size_t start) const { return IndexOf(qvUtf8String(x), start); }    \
    size_t qvUtf8String::LastIndexOf(T x, size_t limit) const {                                          \
        return LastIndexOf(qvUtf8String(x), limit);                                                      \
    }                                                                                                    \
    bool qvUtf8String::IsEqual(T x) const { return IsEqual(qvUtf8String(x)); }                           \
    bool qvUtf8String::IsEqualNoCase(T x) const { return IsEqualNoCase(qvUtf8String(x)); }               \
    bool qvUtf8String::operator==(T x) const { return *this == qvUtf8String(x); }                        \
    bool qvUtf8String::operator!=(T x) const { return *this != qvUtf8String(x); }                        \
    bool qvUtf8String::operator<(T x) const { return *this < qvUtf8String(x); }                          \
    bool qvUtf8String::operator>(T x) const { return *this > qvUtf8String(x); }                          \
    qvUtf8String& qvUtf8String::operator=(T x) {                                                         \
        qvUtf8String converted(x);                                                                       \
        m_str.swap(converted.m_str);                                                                     \
        return *this;                                                                                    \
    }                                                                                                    \
    qvUtf8String& qvUtf8String::operator+=(T x) { return *this += qvUtf8String(x); }                     \
    qvUtf8String qvUtf8String::operator+(T x) const { return *this + qvUtf8String(x); }

QV_UTF8STRING_FAMILY_IMPL(const qvAnsiPtr&)
QV_UTF8STRING_FAMILY_IMPL(const qvUtf8Ptr&)
QV_UTF8STRING_FAMILY_IMPL(const char*)
QV_UTF8STRING_FAMILY_IMPL(const std::string&)
QV_UTF8STRING_FAMILY_IMPL(const char16_t*)
QV_UTF8STRING_FAMILY_IMPL(const std::u16string&)
QV_UTF8STRING_FAMILY_IMPL(const wchar_t*)
QV_UTF8STRING_FAMILY_IMPL(const std::wstring&)
QV_UTF8STRING_FAMILY_IMPL(const qvUtf8Char&)
#undef QV_UTF8STRING_FAMILY_IMPL

bool qvUtf8String::operator==(const qvUtf8String& x) const { return m_str == x.m_str; }
bool qvUtf8String::operator!=(const qvUtf8String& x) const { return m_str != x.m_str; }
// std::char_traits<char> orders bytes as unsigned values, a shorter prefix first.
bool qvUtf8String::operator<(const qvUtf8String& x) const { return m_str < x.m_str; }
bool qvUtf8String::operator>(const qvUtf8String& x) const { return m_str > x.m_str; }

qvUtf8String& qvUtf8String::operator+=(const qvUtf8String& x) {
    m_str += x.m_str;
    return *this;
}

qvUtf8String qvUtf8String::operator+(const qvUtf8String& x) const {
    qvUtf8String out(*this);
    out.m_str += x.m_str;
    return out;
}

bool qvUtf8String::operator<(char c) const { return *this < qvUtf8String(qvUtf8Char(c)); }
bool qvUtf8String::operator>(char c) const { return *this > qvUtf8String(qvUtf8Char(c)); }
qvUtf8String& qvUtf8String::operator+=(char c) { return *this += qvUtf8String(qvUtf8Char(c)); }
qvUtf8String qvUtf8String::operator+(char c) const { return *this + qvUtf8String(qvUtf8Char(c)); }

qvUtf8String operator+(const char* left, const qvUtf8String& right) { return qvUtf8String(left) + right; }

qvUtf8String operator+(const std::string& left, const qvUtf8String& right) {
    return qvUtf8String(left) + right;
}
