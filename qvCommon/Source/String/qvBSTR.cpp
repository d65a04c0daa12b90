#include "String/qvBSTR.h"

#include <cstring>
#include <cwchar>

void qvBSTR::SetFromUtf8Str(const qvUtf8String& text) { m_str = qvPlatform::CreateString(text.c_str()); }

void qvBSTR::SetFromUtf16Wstr(const std::wstring& wideText) {
    m_str = qvPlatform::CreateString(qvString::WstringToUtf8(wideText).c_str());
}

std::string qvBSTR::ToString() const {
    if (m_str == nullptr) return std::string();
    // The platform's largest UTF-8 size for the string always holds it.
    return std::string(m_str);
}

qvUtf8String qvBSTR::ToQvUtf8String() const { return qvUtf8String(ToString()); }

std::wstring qvBSTR::ToWstring() const { return qvString::Utf8ToWstring(ToString()); }

void qvBSTR::FillStr(char* destination, size_t size) const {
    if (destination == nullptr) return;
    std::string text = ToString();
    std::strncpy(destination, text.c_str(), size);
}

void qvBSTR::FillWstr(wchar_t* destination, size_t) const {
    if (destination == nullptr) return;
    std::wstring text = ToWstring();
    std::wcscpy(destination, text.c_str());
}

void qvBSTR::release() {
    qvPlatform::ReleaseString(m_str);
    m_str = nullptr;
}
