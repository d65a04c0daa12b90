#include "TW_Settings_Utils/twNumberText.h"

#include "String/qvUtf8String.h"

#include <charconv>
#include <cmath>
#include <system_error>

namespace twNumberText {

bool readDouble(std::string_view token, double& out) {
    if (token.empty()) return false;
    double value = 0.0;
    const auto [end, error] = std::from_chars(token.data(), token.data() + token.size(), value);
    if (error == std::errc() && end == token.data() + token.size() && !(std::isinf(value) && value > 0)) {
        out = value;
        return true;
    }
    // The rare forms (a leading "+", hexadecimal, out of range) go the slow,
    // shared way, which decides them all.
    if (token.find('\0') != std::string_view::npos) return false;
    double slow = 0.0;
    if (!qvUtf8String(std::string(token)).ToDouble(slow)) return false;
    out = slow;
    return true;
}

void appendFixed(std::string& out, double value, int decimals) {
    // Enough for any double in fixed form with up to 17 decimals.
    char buffer[330];
    const auto [end, error] = std::to_chars(buffer, buffer + sizeof(buffer), value, std::chars_format::fixed, decimals);
    if (error == std::errc()) out.append(buffer, static_cast<size_t>(end - buffer));
}

}  // namespace twNumberText
