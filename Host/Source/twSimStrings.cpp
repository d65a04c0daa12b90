#include "twSimStrings.h"

#include "twSimText.h"

namespace {

constexpr long long kCheck = 0x7477537472696E67LL;  // marks strings made by this host

bool IsEmpty(const PrSDKString& s) { return s.opaque[0] == 0 && s.opaque[1] == 0; }

template <typename Unit, typename Text>
prSuiteError CopyOut(const Text& text, Unit* buffer, csSDK_uint32* ioSize) {
    const csSDK_uint32 needed = static_cast<csSDK_uint32>(text.size() + 1);
    if (!buffer || *ioSize < needed) {
        *ioSize = needed;
        return suiteError_StringBufferTooSmall;
    }
    for (size_t i = 0; i < text.size(); ++i) buffer[i] = static_cast<Unit>(text[i]);
    buffer[text.size()] = 0;
    *ioSize = needed;
    return suiteError_NoError;
}

}  // namespace

twSimStrings::twSimStrings(twSimDiagnostics& diagnostics) : m_diagnostics(diagnostics) {}

PrSDKString twSimStrings::store(std::u16string units) {
    std::lock_guard<std::mutex> lock(m_mutex);
    const long long id = m_next++;
    m_strings[id] = std::move(units);
    PrSDKString s;
    s.opaque[0] = id;
    s.opaque[1] = id ^ kCheck;
    return s;
}

bool twSimStrings::find(const PrSDKString& s, std::u16string& out) const {
    if (IsEmpty(s)) {
        out.clear();
        return true;
    }
    if ((s.opaque[0] ^ kCheck) != s.opaque[1]) return false;
    std::lock_guard<std::mutex> lock(m_mutex);
    auto it = m_strings.find(s.opaque[0]);
    if (it == m_strings.end()) return false;
    out = it->second;
    return true;
}

prSuiteError twSimStrings::disposeString(const PrSDKString* s) {
    if (!s) return suiteError_InvalidParms;
    if (IsEmpty(*s)) return suiteError_NoError;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        if ((s->opaque[0] ^ kCheck) == s->opaque[1] && m_strings.erase(s->opaque[0]) == 1) return suiteError_NoError;
    }
    m_diagnostics.add(twSimIssue::UnknownString, "DisposeString of an unknown or already disposed string");
    return suiteError_StringNotFound;
}

prSuiteError twSimStrings::allocateFromUTF8(const prUTF8Char* text, PrSDKString* out) {
    if (!text || !out) return suiteError_InvalidParms;
    *out = store(twSimText::Utf8ToUtf16(reinterpret_cast<const char*>(text)));
    return suiteError_NoError;
}

prSuiteError twSimStrings::allocateFromUTF16(const prUTF16Char* text, PrSDKString* out) {
    if (!text || !out) return suiteError_InvalidParms;
    std::u16string units;
    for (size_t i = 0; text[i] != 0; ++i) units += static_cast<char16_t>(text[i]);
    *out = store(std::move(units));
    return suiteError_NoError;
}

prSuiteError twSimStrings::copyToUTF8(const PrSDKString* s, prUTF8Char* buffer, csSDK_uint32* ioSize) {
    if (!s || !ioSize) return suiteError_InvalidParms;
    std::u16string units;
    if (!find(*s, units)) {
        m_diagnostics.add(twSimIssue::UnknownString, "CopyToUTF8String");
        return suiteError_StringNotFound;
    }
    return CopyOut(twSimText::Utf16ToUtf8(units), buffer, ioSize);
}

prSuiteError twSimStrings::copyToUTF16(const PrSDKString* s, prUTF16Char* buffer, csSDK_uint32* ioSize) {
    if (!s || !ioSize) return suiteError_InvalidParms;
    std::u16string units;
    if (!find(*s, units)) {
        m_diagnostics.add(twSimIssue::UnknownString, "CopyToUTF16String");
        return suiteError_StringNotFound;
    }
    return CopyOut(units, buffer, ioSize);
}

PrSDKString twSimStrings::make(const std::string& utf8) { return store(twSimText::Utf8ToUtf16(utf8)); }

bool twSimStrings::text(const PrSDKString& s, std::string& out) const {
    std::u16string units;
    if (!find(s, units)) return false;
    out = twSimText::Utf16ToUtf8(units);
    return true;
}

std::string twSimStrings::textOrEmpty(const PrSDKString& s) const {
    std::string out;
    text(s, out);
    return out;
}

bool twSimStrings::isLive(const PrSDKString& s) const {
    if (IsEmpty(s)) return false;
    std::u16string units;
    return find(s, units);
}

void twSimStrings::release(const PrSDKString& s) {
    if (IsEmpty(s)) return;
    disposeString(&s);
}

size_t twSimStrings::liveCount() const {
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_strings.size();
}

std::vector<std::string> twSimStrings::leaked() const {
    std::lock_guard<std::mutex> lock(m_mutex);
    std::vector<std::string> out;
    for (const auto& s : m_strings)
        out.push_back("string #" + std::to_string(s.first) + " \"" + twSimText::Utf16ToUtf8(s.second) + "\"");
    return out;
}
