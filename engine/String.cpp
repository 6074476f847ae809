#include "engine/String.h"

#include <cassert>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "engine/Recycler.h"

namespace orvel {

char __t_strv[NUMBER_TEXT_SIZE];

namespace {

// Only these three count as whitespace for trim(); carriage returns stay.
bool isTrimmed(char c) {
    return c == ' ' || c == '\n' || c == '\t';
}

unsigned smaller(unsigned a, unsigned b) {
    return a < b ? a : b;
}

// Text buffers come from the recycler: strings are made and dropped during play (score popups),
// and a reused buffer costs no trip to the heap. Every buffer starts zero-filled.
char* newBuffer(unsigned size) {
    char* buffer = static_cast<char*>(Recycler::take(size));
    std::memset(buffer, 0, size);
    return buffer;
}

void freeBuffer(char* buffer) {
    Recycler::give(buffer);
}

unsigned lengthOf(const char* s) {
    assert(s && "null C string");
    return static_cast<unsigned>(std::strlen(s));
}

} // namespace

String::String() : data(newBuffer(1)), capacity(0), len(0) {}

String::String(const char* s) : String(s, lengthOf(s)) {}

String::String(const String& other) : String(other.data, other.len) {}

String::String(const char* s, unsigned n) : data(newBuffer(n + 2)), capacity(n + 1), len(n) {
    std::memcpy(data, s, n);
}

String::~String() {
    freeBuffer(data);
}

char* String::replaceBuffer(unsigned newCapacity) {
    char* old = data;
    data = newBuffer(newCapacity + 1);
    std::memcpy(data, old, smaller(capacity, newCapacity));
    capacity = newCapacity;
    return old;
}

void String::allocate(unsigned n) {
    if (capacity < n) freeBuffer(replaceBuffer(n));
}

char* String::getCStringCopy() const {
    char* copy = new char[len + 1];
    std::memcpy(copy, data, len);
    copy[len] = 0;
    return copy;
}

void String::clear() {
    len = 0;
    freeBuffer(replaceBuffer(4));
}

void String::set(const char* s) {
    unsigned n = lengthOf(s);
    // s may point into the current buffer, so the old one lives until the copy is done.
    char* old = nullptr;
    if (n > capacity) old = replaceBuffer(n + 1);
    std::memmove(data, s, n);
    data[at(n)] = 0;
    len = n;
    freeBuffer(old);
}

void String::set(const String& other) {
    unsigned n = other.len;
    len = n;
    if (capacity < n) freeBuffer(replaceBuffer(n + 1));
    std::memmove(data, other.data, n);
    data[at(n)] = 0;
}

String& String::operator=(const char* s) {
    set(s);
    return *this;
}

String& String::operator=(const String& other) {
    set(other);
    return *this;
}

void String::append(const char* s) {
    unsigned n = lengthOf(s);
    unsigned needed = len + n + 1;
    // s may point into the current buffer, so the old one lives until the copy is done.
    char* old = nullptr;
    if (capacity < needed) old = replaceBuffer(needed);
    std::memmove(data + len, s, n);
    len += n;
    data[at(len)] = 0;
    freeBuffer(old);
}

void String::append(const String& other) {
    // Read before growing: other may be this string.
    unsigned n = other.len;
    unsigned needed = len + n + 1;
    if (capacity < needed) freeBuffer(replaceBuffer(needed));
    std::memmove(data + len, other.data, n);
    len += n;
    data[at(len)] = 0;
}

String& String::operator+=(const char* s) {
    append(s);
    return *this;
}

String& String::operator+=(const String& other) {
    append(other);
    return *this;
}

void String::appendChar(char c) {
    if (capacity == len + 1) freeBuffer(replaceBuffer(len + 9));
    data[at(len)] = c;
    ++len;
}

bool String::operator==(const String& other) const {
    if (len != other.len) return false;
    for (unsigned i = 0; i < len; ++i) {
        if (data[at(i)] != other.data[other.at(i)]) return false;
    }
    return true;
}

bool String::equals(const String& other) const {
    if (data == nullptr || other.data == nullptr) return false;
    return *this == other;
}

bool String::equals(const char* s) const {
    if (s == nullptr) return false;
    if (len != std::strlen(s)) return false;
    for (unsigned i = 0; i < len; ++i) {
        if (data[at(i)] != s[i]) return false;
    }
    return true;
}

bool String::matchesAt(unsigned i, const String& needle) const {
    if (needle.len == 0) return data[at(i)] == 0;
    for (unsigned j = 0; j < needle.len; ++j) {
        if (data[at(i + j)] != needle.data[needle.at(j)]) return false;
    }
    return true;
}

int String::indexOf(const String& needle, unsigned from) const {
    unsigned n = needle.len;
    if (n > len || from > len || n > len - from) return -1;
    for (unsigned i = from; i <= len - n; ++i) {
        if (matchesAt(i, needle)) return static_cast<int>(i);
    }
    return -1;
}

int String::indexOfLast(const String& needle, unsigned from) const {
    unsigned n = needle.len;
    if (n > len || from >= len || n > len - from) return -1;
    char last = n == 0 ? 0 : needle.data[needle.at(n - 1)];
    // i runs from len - from down to n inclusive; n <= len - from holds here.
    for (unsigned i = len - from;; --i) {
        if (data[at(i)] == last) return static_cast<int>(i - n);
        if (i == n) break;
    }
    return -1;
}

int String::cut(unsigned pos, unsigned n) {
    std::memmove(data + pos, data + pos + n, len - pos - n);
    std::memset(data + len - n, 0, n);
    len -= n;
    data[at(len)] = 0;
    return static_cast<int>(len);
}

int String::remove(const String& needle) {
    int pos = indexOf(needle, 0);
    if (pos < 0) return pos;
    return cut(static_cast<unsigned>(pos), needle.len);
}

int String::removeTrailing(const String& needle) {
    int pos = indexOfLast(needle, 0);
    if (pos < 0) return pos;
    return cut(static_cast<unsigned>(pos), needle.len);
}

unsigned String::trim() {
    unsigned lead = 0;
    while (lead < len && isTrimmed(data[at(lead)])) ++lead;
    // The trailing scan stops before index 0, so on all-whitespace text the two counts overlap.
    unsigned trail = 0;
    if (len > 1) {
        for (unsigned i = len - 1; i > 0 && isTrimmed(data[at(i)]); --i) ++trail;
    }
    unsigned kept = lead + trail >= len ? 0 : len - lead - trail;

    char* trimmed = newBuffer(kept + 2);
    std::memcpy(trimmed, data + lead, kept);
    freeBuffer(data);
    data = trimmed;
    capacity = kept + 1;
    len = kept;
    return len;
}

String String::substring(unsigned from) const {
    if (from >= len) return String();
    return String(data + from);
}

String String::substring(unsigned from, unsigned to) const {
    assert(from <= to && "substring range runs backwards");
    if (from == to) return String();
    if (from < len && to < len) return String(data + from, to - from);
    return String();
}

int String::parseInteger() const {
    return static_cast<int>(std::strtol(data, nullptr, 0));
}

long String::parseLong() const {
    return std::strtol(data, nullptr, 0);
}

float String::parseFloat() const {
    return std::strtof(data, nullptr);
}

double String::parseDouble() const {
    return std::strtod(data, nullptr);
}

void String::print() const {
    std::fputs(data, stdout);
}

void String::println() const {
    std::fputs(data, stdout);
    std::fputc('\n', stdout);
}

String operator+(const char* left, const String& right) {
    String result(left);
    result += right;
    return result;
}

String operator+(const String& left, const char* right) {
    String result(left);
    result += right;
    return result;
}

String operator+(const String& left, const String& right) {
    String result(left);
    result += right;
    return result;
}

bool operator==(const char* left, const String& right) {
    return right.equals(left);
}

bool operator==(const String& left, const char* right) {
    return left.equals(right);
}

bool operator!=(const char* left, const String& right) {
    return !(left == right);
}

bool operator!=(const String& left, const char* right) {
    return !(left == right);
}

bool stringEquals(const char* a, const char* b) {
    std::size_t n = std::strlen(a);
    return n == std::strlen(b) && std::memcmp(a, b, n) == 0;
}

unsigned stringLength(const char* s) {
    return static_cast<unsigned>(std::strlen(s));
}

unsigned stringLength(const String& s) {
    return s.length();
}

namespace {

// Clears the shared buffer and prints into it. Text beyond NUMBER_TEXT_SIZE - 1 characters
// is cut on purpose: the buffer is the formatters' length limit.
__attribute__((format(printf, 1, 2)))
String formatNumber(const char* format, ...) {
    std::memset(__t_strv, 0, sizeof __t_strv);
    va_list args;
    va_start(args, format);
    std::vsnprintf(__t_strv, sizeof __t_strv, format, args);
    va_end(args);
    return String(__t_strv);
}

} // namespace

String toString(int value) {
    return formatNumber("%i", value);
}

String toString(double value) {
    return formatNumber("%fL", value);
}

String charToString(char c) {
    std::memset(__t_strv, 0, sizeof __t_strv);
    __t_strv[0] = c;
    return String(__t_strv);
}

String strChar(signed char value) {
    return formatNumber("%i", static_cast<int>(value));
}

String strUChar(unsigned char value) {
    return formatNumber("%i", static_cast<int>(value));
}

String strInt(int value) {
    return formatNumber("%i", value);
}

String strUInt(unsigned value) {
    return strInt(static_cast<int>(value));
}

String strLong(long value) {
    return formatNumber("%il", static_cast<int>(value));
}

String strULong(unsigned long value) {
    return strLong(static_cast<long>(value));
}

String strFloat(float value) {
    return formatNumber("%f", static_cast<double>(value));
}

String strDouble(double value) {
    return toString(value);
}

String strCharHex(signed char value) {
    return formatNumber("%X", static_cast<unsigned>(static_cast<int>(value)));
}

String strUCharHex(unsigned char value) {
    return formatNumber("%X", static_cast<unsigned>(value));
}

String strIntHex(int value) {
    return formatNumber("%X", static_cast<unsigned>(value));
}

String strUIntHex(unsigned value) {
    return strIntHex(static_cast<int>(value));
}

String strLongHex(long value) {
    return formatNumber("%Xl", static_cast<unsigned>(value));
}

String strULongHex(unsigned long value) {
    return strLongHex(static_cast<long>(value));
}

String strPointer(const void* p) {
    return formatNumber("%p", p);
}

} // namespace orvel
