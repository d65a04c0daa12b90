// Arbitrary bytes through every character operation of qvUtf8String: none may
// crash, read out of bounds or disagree with the byte count.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "String/qvUtf8String.h"

namespace {

void check(bool condition) {
    if (!condition) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0) return 0;
    // The first byte picks indices and separators; the rest is the text.
    const uint8_t selector = data[0];
    std::string bytes(reinterpret_cast<const char*>(data + 1), size - 1);
    qvUtf8String s(bytes);
    const size_t npos = qvUtf8String::npos;

    size_t length = s.Length();
    check(length <= s.Size());
    check(s.Empty() == (length == 0));

    const char* bad = qvUtf8String::Verify(s.c_str());
    check(bad == nullptr || (bad >= s.c_str() && bad < s.c_str() + s.Size()));
    check(qvUtf8String::Valid(s.Str()) == (bad == nullptr));

    size_t index = length == 0 ? 0 : selector % (length + 2);
    size_t total = 0;
    for (size_t i = 0; i < length; ++i) {
        check(s.SizeOf(i) >= 1 && s.SizeOf(i) <= 4);
        check(s.OffsetOf(i) == total);
        check(s.PosToBitPos(i) == total);
        check(s.PtrToPos(s.c_str() + total) == i);
        check(s.CharAt(i).Size() == s.SizeOf(i));
        total += s.SizeOf(i);
    }
    check(total <= s.Size());
    (void)s.PosToBitPos(length + 3);
    (void)s.LastChar();

    qvUtf8String piece = s.Substr(index, selector % 7);
    check(piece.Size() <= s.Size());
    (void)s.SubstrToIndex(index, index + 2);
    (void)s.Left(index);
    (void)s.Right(selector % 5);

    qvUtf8String needle = s.Substr(index, 2);
    size_t found = s.IndexOf(needle);
    check(found == npos || found < length);
    size_t last = s.LastIndexOf(needle);
    check(last == npos || last < length);
    (void)s.Includes(needle, index);
    (void)s.StartsWith(needle);
    (void)s.EndsWith(needle);
    (void)s.AfterFirst(s.CharAt(index));
    (void)s.IsEqualNoCase(needle);

    qvUtf8String separators(s.CharAt(selector % (length + 1)));
    separators += ',';
    std::vector<qvUtf8String> fields = s.Split(separators);
    check(length == 0 ? fields.empty() : !fields.empty());
    qvUtf8String joined = qvUtf8String::Join(fields, ',');
    check(joined.Size() <= s.Size() + fields.size());

    long asLong = 0;
    double asDouble = 0;
    (void)s.ToInt(asLong);
    (void)s.ToDouble(asDouble);
    (void)s.IsFloat('.');
    (void)s.ToWstring();
    (void)s.ToAnsi();

    qvUtf8String edited(s);
    edited.InsertAt(index, qvUtf8Char('x'));
    edited.ReplaceAt(index, qvUtf8Char(U'\u20AC'));
    edited.RemoveAt(index);
    edited.Replace(s.CharAt(0), qvUtf8Char('y'));
    edited.ReplaceString(needle, qvUtf8String("ab"));
    edited.Trim(s.CharAt(0));
    edited.TrimRightAll();
    edited.Remove(qvUtf8Char('y'));
    edited.ToLowerCase();
    edited = s;
    edited.FilterNonPrintableChars();
    check(edited.Length() == edited.Size());
    return 0;
}
