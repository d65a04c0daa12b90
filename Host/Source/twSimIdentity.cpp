#include "twSimIdentity.h"

#include "MediaCoreSuites.h"
#include "twSimText.h"

#include <cstdlib>
#include <sstream>

twSimIdentity twSimIdentity::PremierePro() { return twSimIdentity(); }

twSimIdentity twSimIdentity::MediaEncoder() {
    twSimIdentity id;
    id.appCode = kAppMediaEncoder;
    return id;
}

twSimIdentity twSimIdentity::AfterEffects() {
    twSimIdentity id;
    id.appCode = kAppAfterEffects;
    return id;
}

bool twSimIdentity::setApp(const std::string& name) {
    if (name == "premiere") appCode = kAppPremierePro;
    else if (name == "ame") appCode = kAppMediaEncoder;
    else if (name == "aftereffects") appCode = kAppAfterEffects;
    else return false;
    return true;
}

bool twSimIdentity::setVersion(const std::string& text) {
    unsigned int parts[3] = {0, 0, 0};
    size_t start = 0;
    int count = 0;
    while (count < 3) {
        const size_t dot = text.find('.', start);
        const std::string piece = text.substr(start, dot == std::string::npos ? std::string::npos : dot - start);
        if (piece.empty() || piece.size() > 6 || piece.find_first_not_of("0123456789") != std::string::npos)
            return false;
        parts[count++] = static_cast<unsigned int>(std::strtoul(piece.c_str(), nullptr, 10));
        if (dot == std::string::npos) break;
        start = dot + 1;
        if (count == 3) return false;  // a fourth part
    }
    major = parts[0];
    minor = parts[1];
    patch = parts[2];
    return true;
}

std::string twSimIdentity::versionText() const {
    std::ostringstream ss;
    ss << major << "." << minor << "." << patch;
    return ss.str();
}

std::string twSimIdentity::describe() const {
    std::string app;
    switch (appCode) {
        case kAppPremierePro: app = "Premiere Pro"; break;
        case kAppMediaEncoder: app = "Media Encoder"; break;
        case kAppAfterEffects: app = "After Effects"; break;
        default: app = "application"; break;
    }
    return app + " " + versionText() + " ('" + twSimText::FourCCHighFirst(appCode) + "'), interface " +
           std::to_string(interfaceVersion);
}
