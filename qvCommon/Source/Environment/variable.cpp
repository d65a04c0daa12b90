#include "Environment/variable.h"

#include <cstring>

#include "String/qvString.h"
#include "String/qvUtf8String.h"

namespace Environment {

Variable::Variable(const char* text, size_t length) : m_buffer(new char[length + 1]), m_size(length + 1) {
    if (length) memcpy(m_buffer.get(), text, length);
    m_buffer[length] = '\0';
}

std::shared_ptr<Variable> Variable::Create(const char* text) {
    if (!text) text = "";
    return std::shared_ptr<Variable>(new Variable(text, strlen(text)));
}

std::shared_ptr<Variable> Variable::Create(const char* name, const char* value) {
    std::string text = name ? name : "";
    text += '=';
    text += value ? value : "";
    return std::shared_ptr<Variable>(new Variable(text.c_str(), text.size()));
}

std::shared_ptr<Variable> Variable::Create(const qvUtf8String& text) {
    // The array posix_spawn takes is of C strings: the text ends at its first NUL.
    return Create(text.c_str());
}

Variable::operator std::wstring() const { return qvString::Utf8ToWstring(Str()); }

std::string Variable::GetName() const {
    const char* equal = strchr(Str(), '=');
    return equal ? std::string(Str(), static_cast<size_t>(equal - Str())) : std::string(Str());
}

std::string Variable::GetValue() const {
    const char* equal = strchr(Str(), '=');
    return equal ? std::string(equal + 1) : std::string();
}

}  // namespace Environment
