#pragma once
// Host strings behind the String suite. A PrSDKString carries the string's
// number and a check word; an all-zero PrSDKString is the empty string, which
// may be read and disposed.

#include "twSimDiagnostics.h"

#include "MediaCoreTypes.h"

#include <mutex>
#include <string>
#include <unordered_map>
#include <vector>

class twSimStrings {
public:
    explicit twSimStrings(twSimDiagnostics& diagnostics);

    // ---- String suite ----
    prSuiteError disposeString(const PrSDKString* s);
    prSuiteError allocateFromUTF8(const prUTF8Char* text, PrSDKString* out);
    prSuiteError copyToUTF8(const PrSDKString* s, prUTF8Char* buffer, csSDK_uint32* ioSizeInElements);
    prSuiteError allocateFromUTF16(const prUTF16Char* text, PrSDKString* out);
    prSuiteError copyToUTF16(const PrSDKString* s, prUTF16Char* buffer, csSDK_uint32* ioSizeInElements);

    // ---- host side ----
    PrSDKString make(const std::string& utf8);
    // UTF-8 text of a live (or empty) string; false for an unknown one.
    bool text(const PrSDKString& s, std::string& out) const;
    std::string textOrEmpty(const PrSDKString& s) const;
    bool isLive(const PrSDKString& s) const;
    // The host disposing of a string it was given (never a diagnostic for empty).
    void release(const PrSDKString& s);
    size_t liveCount() const;
    std::vector<std::string> leaked() const;

private:
    bool find(const PrSDKString& s, std::u16string& out) const;
    PrSDKString store(std::u16string units);

    mutable std::mutex m_mutex;
    twSimDiagnostics& m_diagnostics;
    long long m_next = 1;
    std::unordered_map<long long, std::u16string> m_strings;
};
