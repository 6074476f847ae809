#pragma once
// Owned, growable byte string for file names and HUD texts, plus the number-to-text formatters.

namespace orvel {

// Text is bytes with no encoding. The buffer holds capacity + 1 bytes, zero-filled when
// allocated, and a NUL follows the last character (appendChar leaves that to the zero fill),
// so getCString() can go to any C interface. Wherever a
// character index i is read or written, the index used is i < capacity ? i : capacity: a stray
// index lands on the buffer's last byte instead of outside it. Growth is exact fit (no
// doubling); only clear() and trim() ever shrink the buffer.
class String {
public:
    // An empty string on a single zero byte; capacity 0.
    String();
    // A copy of s sized exactly: capacity strlen(s) + 1. s must not be null.
    String(const char* s);
    // A copy of other's length characters, embedded NUL bytes included; capacity length + 1.
    String(const String& other);
    ~String();

    // Grows to capacity n, keeping the contents, when the buffer is smaller; never shrinks.
    void allocate(unsigned n);

    bool isEmpty() const { return len == 0; }
    unsigned length() const { return len; }

    // The buffer itself; owned by this string, valid until the next change.
    const char* getCString() const { return data; }
    // A NUL-terminated copy of the characters in a new[] array; the caller delete[]s it.
    char* getCStringCopy() const;

    // Empties the string onto a fresh 4-character buffer that keeps the first min(capacity, 4)
    // old bytes, so getCString() of a cleared "hello" still reads "hell". Only length counts,
    // and carrying the bytes over costs nothing, so they stay.
    void clear();

    // Replaces the text; grows to capacity strlen(s) + 1 only when strlen(s) > capacity.
    void set(const char* s);
    // Replaces the text with other's length characters; grows to length + 1 when needed.
    void set(const String& other);
    String& operator=(const char* s);
    String& operator=(const String& other);

    // Appends s; grows to capacity length + strlen(s) + 1 when smaller than that.
    void append(const char* s);
    // Appends other's length characters; grows to capacity length + other.length + 1 when needed.
    void append(const String& other);
    String& operator+=(const char* s);
    String& operator+=(const String& other);

    // Appends one character. Grows only when capacity is exactly length + 1, and then to
    // length + 9; writes no terminator because the zero-filled buffers already hold one.
    void appendChar(char c);

    // Same length and same bytes; two empty strings are equal.
    bool operator==(const String& other) const;
    // As ==, but false when either buffer is missing.
    bool equals(const String& other) const;
    // False for a null s; otherwise same length as strlen(s) and same bytes.
    bool equals(const char* s) const;

    // First start position >= from where needle occurs, or -1. An empty needle finds the first
    // NUL byte at or after from, normally the terminator at length.
    int indexOf(const String& needle, unsigned from) const;
    // Scans down from length - from for the needle's last character alone and answers that
    // position minus the needle's length, one before where a needle ending there would start;
    // -1 when none. An empty needle looks for a NUL byte. removeTrailing() is built on this
    // position, so the search stays as it is.
    int indexOfLast(const String& needle, unsigned from) const;
    // Cuts the first occurrence of needle; returns the new length, or -1 when there is none.
    int remove(const String& needle);
    // Cuts needle's length characters at indexOfLast(needle, 0); new length, or -1.
    int removeTrailing(const String& needle);
    // Strips leading and trailing spaces, newlines and tabs (not carriage returns) and moves
    // to an exact-fit buffer of capacity length + 1; returns the new length.
    unsigned trim();

    // The characters from `from` up to the first NUL; empty when from >= length.
    String substring(unsigned from) const;
    // The characters in [from, to). Answers text only while both from and to are below
    // length, so a range ending exactly at length is empty; callers stay inside that rule.
    String substring(unsigned from, unsigned to) const;

    // strtol with base 0: "0x" reads hexadecimal, a leading 0 octal.
    int parseInteger() const;
    long parseLong() const;
    float parseFloat() const;
    double parseDouble() const;

    // Writes the text to standard output; println() adds a line end.
    void print() const;
    void println() const;

    char* data;        // owned; capacity + 1 bytes, zero-filled when allocated, never null
    unsigned capacity; // characters the buffer is sized for
    unsigned len;      // characters in use

private:
    // A copy of n bytes of s: capacity n + 1 on a buffer of n + 2 bytes.
    String(const char* s, unsigned n);

    // Index i clamped to the buffer's last byte.
    unsigned at(unsigned i) const { return i < capacity ? i : capacity; }
    // Whether needle's characters start at position i; an empty needle matches a NUL byte.
    bool matchesAt(unsigned i, const String& needle) const;
    // Moves the characters after [pos, pos + n) down over it and zeroes the freed tail;
    // returns the new length.
    int cut(unsigned pos, unsigned n);
    // Moves to a zero-filled buffer of newCapacity + 1 bytes holding the first
    // min(capacity, newCapacity) old bytes; returns the old buffer for the caller to free,
    // so text that points into it can still be read.
    char* replaceBuffer(unsigned newCapacity);
};

String operator+(const char* left, const String& right);
String operator+(const String& left, const char* right);
String operator+(const String& left, const String& right);

// False when the C string is null; otherwise same length and same bytes.
bool operator==(const char* left, const String& right);
bool operator==(const String& left, const char* right);
bool operator!=(const char* left, const String& right);
bool operator!=(const String& left, const char* right);

// Same strlen and same bytes.
bool stringEquals(const char* a, const char* b);
unsigned stringLength(const char* s);
unsigned stringLength(const String& s);

// Bytes in the shared formatting buffer; longer texts are cut to NUMBER_TEXT_SIZE - 1 characters.
constexpr unsigned NUMBER_TEXT_SIZE = 255;

// The one scratch buffer every formatter below clears and prints into; main thread only.
extern char __t_strv[NUMBER_TEXT_SIZE];

// Each formatter returns a new String of its text.
String toString(int value);      // "%i"
String toString(double value);   // "%fL": the capital L belongs to the text
String charToString(char c);     // the single character; NUL gives an empty string
String strChar(signed char value);
String strUChar(unsigned char value);
String strInt(int value);
// Prints through "%i" like strInt, so values above 2147483647 come out negative; score and
// file-name numbers never get there, and the texts stay as they are.
String strUInt(unsigned value);
// "%il": the low 32 bits as an int followed by a letter l, the long formatters' text form.
String strLong(long value);
String strULong(unsigned long value);
String strFloat(float value);    // "%f"
String strDouble(double value);  // "%fL", as toString(double)
String strCharHex(signed char value); // "%X" of the sign-widened value: -1 gives FFFFFFFF
String strUCharHex(unsigned char value);
String strIntHex(int value);
String strUIntHex(unsigned value);
// "%Xl": the low 32 bits in hexadecimal followed by a letter l.
String strLongHex(long value);
String strULongHex(unsigned long value);
String strPointer(const void* p); // "%p"

} // namespace orvel
