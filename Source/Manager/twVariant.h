#pragma once
// Values the decoder library hands out in Variants.

#include <BlackmagicRawAPI.h>

// Clears the value on every way out of a reading, so that the library gets
// back the strings and arrays it put into it.
class ScopedVariant {
public:
    ScopedVariant() { VariantInit(&m_value); }
    ~ScopedVariant() { VariantClear(&m_value); }
    ScopedVariant(const ScopedVariant&) = delete;
    ScopedVariant& operator=(const ScopedVariant&) = delete;
    Variant& get() { return m_value; }

private:
    Variant m_value;
};

// A value of any of the numeric types; false for an empty value, a string or
// an array. The library gives some flags as numbers.
bool twVariantNumber(const Variant& value, double& out);
