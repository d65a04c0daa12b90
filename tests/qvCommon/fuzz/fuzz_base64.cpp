// Base64 decoding of arbitrary text must stay inside the size it announces,
// and encoding then decoding any bytes must give them back.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "String/qvStringHelpers.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    // Decode the input read as text, into a buffer of exactly the announced size.
    std::string text(reinterpret_cast<const char*>(data), size);
    int bound = Base64decode_len(text.c_str());
    std::vector<char> plain(static_cast<size_t>(bound));
    int decoded = Base64decode(plain.data(), text.c_str());
    if (decoded < 0 || decoded + 1 > bound) std::abort();

    // Encode the raw input and decode it again.
    int n = static_cast<int>(size);
    std::vector<char> coded(static_cast<size_t>(Base64encode_len(n)));
    int written = Base64encode(coded.data(), reinterpret_cast<const char*>(data), n);
    if (written != Base64encode_len(n)) std::abort();
    std::vector<char> back(static_cast<size_t>(Base64decode_len(coded.data())));
    if (Base64decode(back.data(), coded.data()) != n) std::abort();
    if (n > 0 && std::memcmp(back.data(), data, size) != 0) std::abort();
    return 0;
}
