#pragma once
// One environment entry for a child process, "name=value", kept in a buffer of
// exactly its size so that a package can hand the bytes to posix_spawn as they are.

#include <cstddef>
#include <memory>
#include <string>

class qvUtf8String;

namespace Environment {

class Variable {
public:
    static std::shared_ptr<Variable> Create(const char* text);
    static std::shared_ptr<Variable> Create(const char* name, const char* value);
    static std::shared_ptr<Variable> Create(const qvUtf8String& text);

    Variable(const Variable&) = delete;
    Variable& operator=(const Variable&) = delete;

    // Bytes of the text plus its terminator.
    size_t Size() const { return m_size; }
    const char* Str() const { return m_buffer.get(); }
    operator const char*() const { return m_buffer.get(); }
    operator std::wstring() const;

    // The parts around the first "="; a text without "=" is all name.
    std::string GetName() const;
    std::string GetValue() const;

private:
    Variable(const char* text, size_t length);

    std::unique_ptr<char[]> m_buffer;
    size_t m_size = 0;
};

}  // namespace Environment
