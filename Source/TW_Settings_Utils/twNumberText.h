#pragma once
// Numbers in the settings files' texts, fast enough for a 65-point cube
// (274625 rows) and its sidecar text: no stream, no allocation per number, and
// independent of the process's locale, which a host may have changed.

#include <string>
#include <string_view>

namespace twNumberText {

// The token read whole as a double, with the rules of qvUtf8String::ToDouble
// (strtod's forms, exponents included; +inf refused).
bool readDouble(std::string_view token, double& out);

// Appends `value` with `decimals` fixed decimals: the text of printf's "%.*f",
// so what std::to_string (six decimals) and qvUtf8String::DoubleToString give.
void appendFixed(std::string& out, double value, int decimals);

// Splits `text` at runs of blanks (spaces and tabs) and calls `onToken` for
// each token.
template <class OnToken>
void forEachToken(std::string_view text, OnToken&& onToken) {
    size_t pos = 0;
    const size_t size = text.size();
    while (pos < size) {
        while (pos < size && (text[pos] == ' ' || text[pos] == '\t')) ++pos;
        if (pos >= size) break;
        size_t end = pos;
        while (end < size && text[end] != ' ' && text[end] != '\t') ++end;
        onToken(text.substr(pos, end - pos));
        pos = end;
    }
}

}  // namespace twNumberText
