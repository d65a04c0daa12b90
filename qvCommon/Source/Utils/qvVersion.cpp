#include "Utils/qvVersion.h"

#include "Platform/qvPlatformSystemInfo.h"

#include <cstdlib>
#include <regex>
#include <sstream>

QvVersion::QvVersion(uint8_t ma, uint8_t mi, uint8_t pa, uint8_t be) : major(ma), minor(mi), patch(pa), beta(be) {}

QvVersion::QvVersion(const qvUtf8String& text) {
    const std::string& s = text.Str();
    std::string piece;
    int dots = 0;
    size_t i = 0;
    for (; i < s.size(); ++i) {
        const char c = s[i];
        if (c == '.') {
            ++dots;
            const uint8_t value = static_cast<uint8_t>(std::atoi(piece.c_str()));
            piece.clear();
            if (dots == 1) {
                major = value;
            } else if (dots == 2) {
                minor = value;
            } else {
                patch = value;
                ++i;
                break;
            }
            continue;
        }
        // "3.2.x": the patch piece ends at the "x".
        if (dots == 2 && c == 'x') break;
        piece += c;
    }
    if (dots == 2) {
        patch = static_cast<uint8_t>(std::atoi(piece.c_str()));
    } else if (dots >= 3) {
        const std::string rest = s.substr(i);
        if (rest.compare(0, 4, "beta") == 0) beta = static_cast<uint8_t>(std::atoi(rest.c_str() + 4));
    }
}

qvUtf8String QvVersion::toString() const {
    std::ostringstream out;
    if (major < 255) {
        out << unsigned(major) << "." << unsigned(minor) << "." << unsigned(patch);
    } else {
        out << "Unknown Version. Infos : " << unsigned(minor) << "." << unsigned(patch);
    }
    if (beta != 0) out << ".beta" << unsigned(beta);
    return qvUtf8String(out.str());
}

std::wstring QvVersion::toWstring() const {
    std::wstring out;
    if (major < 255) {
        out = std::to_wstring(major) + L"." + std::to_wstring(minor) + L"." + std::to_wstring(patch);
    } else {
        out = L"Unknown Version. Infos : " + std::to_wstring(minor) + L"." + std::to_wstring(patch);
    }
    if (beta != 0) out += L".beta" + std::to_wstring(beta);
    return out;
}

QvVersion QvVersion::FromBundleVersionText(const qvUtf8String& text) {
    static const std::regex s_pattern(R"((\d+)\.(\d+)(\.\d+)?(\.\d+)?$)");
    QvVersion v;
    std::smatch m;
    const std::string& s = text.Str();
    if (!std::regex_search(s, m, s_pattern)) return v;
    auto group = [&m](size_t i) -> uint8_t {
        if (!m[i].matched) return 0;
        std::string g = m[i].str();
        if (!g.empty() && g[0] == '.') g.erase(0, 1);
        return static_cast<uint8_t>(std::atoi(g.c_str()));
    };
    v.major = group(1);
    v.minor = group(2);
    v.patch = group(3);
    v.beta = group(4);
    return v;
}

QvVersion QvVersion::FromVersionResource() { return FromBundleVersionText(VersionFromResource()); }

qvUtf8String VersionFromResource() { return qvUtf8String(qvPlatform::MainBundleShortVersionString()); }
