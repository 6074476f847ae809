#include "engine/String.h"

#include <cstdint>
#include <cstring>

#include <gtest/gtest.h>

using namespace orvel;

namespace {

// "ab", a NUL, then "c": four characters with a NUL inside.
String withEmbeddedNul() {
    String s("ab");
    s.appendChar('\0');
    s.appendChar('c');
    return s;
}

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

} // namespace

// ---- Construction and storage ----

TEST(String, DefaultIsEmptyOnOneZeroByte) {
    String s;
    EXPECT_EQ(s.capacity, 0u);
    EXPECT_EQ(s.length(), 0u);
    EXPECT_TRUE(s.isEmpty());
    ASSERT_NE(s.getCString(), nullptr);
    EXPECT_EQ(s.getCString()[0], '\0');
}

TEST(String, FromEmptyCStringHasCapacityOne) {
    String s("");
    EXPECT_EQ(s.capacity, 1u);
    EXPECT_EQ(s.length(), 0u);
    EXPECT_TRUE(s.isEmpty());
    EXPECT_STREQ(s.getCString(), "");
}

TEST(String, FromCStringHasCapacityLengthPlusOne) {
    String s("hello");
    EXPECT_EQ(s.capacity, 6u);
    EXPECT_EQ(s.length(), 5u);
    EXPECT_FALSE(s.isEmpty());
    EXPECT_STREQ(s.getCString(), "hello");
    // Seven bytes: the terminator at 5 and the zeroed last byte at 6.
    EXPECT_EQ(s.data[5], '\0');
    EXPECT_EQ(s.data[6], '\0');
}

TEST(String, CopyIsSizedFromLengthNotCapacity) {
    String a("hello");
    a.allocate(50);
    String b(a);
    EXPECT_EQ(b.capacity, 6u);
    EXPECT_EQ(b.length(), 5u);
    EXPECT_STREQ(b.getCString(), "hello");
    EXPECT_NE(b.getCString(), a.getCString());
}

TEST(String, CopyIsIndependentOfOriginal) {
    String a("hello");
    String b(a);
    b.set("x");
    EXPECT_STREQ(a.getCString(), "hello");
    EXPECT_STREQ(b.getCString(), "x");
}

TEST(String, CopyKeepsEmbeddedNul) {
    String a = withEmbeddedNul();
    String b(a);
    EXPECT_EQ(b.length(), 4u);
    EXPECT_EQ(b.capacity, 5u);
    EXPECT_EQ(std::memcmp(b.getCString(), "ab\0c\0", 5), 0);
}

TEST(String, AllocateGrowsToRequestedCapacityKeepingText) {
    String s("abc");
    s.allocate(10);
    EXPECT_EQ(s.capacity, 10u);
    EXPECT_EQ(s.length(), 3u);
    EXPECT_STREQ(s.getCString(), "abc");
    EXPECT_EQ(s.data[10], '\0');
}

TEST(String, AllocateNeverShrinks) {
    String s("abc");
    s.allocate(10);
    const char* before = s.getCString();
    s.allocate(5);
    s.allocate(10);
    EXPECT_EQ(s.capacity, 10u);
    EXPECT_EQ(s.getCString(), before);
    EXPECT_STREQ(s.getCString(), "abc");
}

TEST(String, AllocateCarriesEveryOldByte) {
    String s("hello");
    s.clear();
    s.allocate(8);
    EXPECT_EQ(s.capacity, 8u);
    EXPECT_EQ(s.length(), 0u);
    EXPECT_STREQ(s.getCString(), "hell");
}

TEST(String, GetCStringCopyIsTerminatedAndIndependent) {
    String s("hello");
    char* copy = s.getCStringCopy();
    EXPECT_NE(copy, s.getCString());
    s.set("world");
    EXPECT_STREQ(copy, "hello");
    delete[] copy;
}

TEST(String, GetCStringCopyTakesLengthBytes) {
    String s = withEmbeddedNul();
    char* copy = s.getCStringCopy();
    EXPECT_EQ(std::memcmp(copy, "ab\0c\0", 5), 0);
    delete[] copy;

    String cleared("hello");
    cleared.clear();
    char* empty = cleared.getCStringCopy();
    EXPECT_STREQ(empty, "");
    delete[] empty;
}

// ---- clear ----

TEST(String, ClearKeepsFirstFourBytesVisible) {
    String s("hello");
    s.clear();
    EXPECT_EQ(s.length(), 0u);
    EXPECT_TRUE(s.isEmpty());
    EXPECT_EQ(s.capacity, 4u);
    EXPECT_STREQ(s.getCString(), "hell");
}

TEST(String, ClearOfShortStringCopiesOnlyItsCapacity) {
    String s("ab");
    s.clear();
    EXPECT_EQ(s.capacity, 4u);
    EXPECT_EQ(s.length(), 0u);
    EXPECT_STREQ(s.getCString(), "ab");
}

TEST(String, ClearOfDefaultStringGivesCapacityFour) {
    String s;
    s.clear();
    EXPECT_EQ(s.capacity, 4u);
    EXPECT_EQ(s.length(), 0u);
    EXPECT_STREQ(s.getCString(), "");
}

TEST(String, AppendAfterClearOverwritesOldBytes) {
    String s("hello");
    s.clear();
    s.append("xy");
    EXPECT_EQ(s.capacity, 4u);
    EXPECT_EQ(s.length(), 2u);
    EXPECT_STREQ(s.getCString(), "xy");
}

// ---- set and assignment ----

TEST(String, SetOnDefaultGrowsToLengthPlusOne) {
    String s;
    s.set("hello");
    EXPECT_EQ(s.capacity, 6u);
    EXPECT_EQ(s.length(), 5u);
    EXPECT_STREQ(s.getCString(), "hello");
}

TEST(String, SetLongerTextGrowsToLengthPlusOne) {
    String s("abc");
    s.set("abcdefgh");
    EXPECT_EQ(s.capacity, 9u);
    EXPECT_EQ(s.length(), 8u);
    EXPECT_STREQ(s.getCString(), "abcdefgh");
}

TEST(String, SetTextAsLongAsCapacityDoesNotGrow) {
    String s("abcd");
    s.set("vwxyz");
    EXPECT_EQ(s.capacity, 5u);
    EXPECT_EQ(s.length(), 5u);
    EXPECT_STREQ(s.getCString(), "vwxyz");
}

TEST(String, SetShorterTextKeepsCapacity) {
    String s("hello world");
    s.set("hi");
    EXPECT_EQ(s.capacity, 12u);
    EXPECT_EQ(s.length(), 2u);
    EXPECT_STREQ(s.getCString(), "hi");
}

TEST(String, SetFromOwnBufferReadsBeforeOverwriting) {
    String s("hello");
    s.set(s.getCString() + 1);
    EXPECT_EQ(s.length(), 4u);
    EXPECT_STREQ(s.getCString(), "ello");
}

TEST(String, SetFromStringGrowsToLengthPlusOne) {
    String s("ab");
    String other("hello world");
    s.set(other);
    EXPECT_EQ(s.capacity, 12u);
    EXPECT_EQ(s.length(), 11u);
    EXPECT_STREQ(s.getCString(), "hello world");
}

TEST(String, SetFromShorterStringKeepsCapacity) {
    String s("hello world");
    s.set(String("hi"));
    EXPECT_EQ(s.capacity, 12u);
    EXPECT_EQ(s.length(), 2u);
    EXPECT_STREQ(s.getCString(), "hi");
}

TEST(String, SetFromStringCopiesEmbeddedNul) {
    String s;
    s.set(withEmbeddedNul());
    EXPECT_EQ(s.length(), 4u);
    EXPECT_EQ(s.capacity, 5u);
    EXPECT_EQ(std::memcmp(s.getCString(), "ab\0c\0", 5), 0);
}

TEST(String, AssignCStringSetsAndReturnsSelf) {
    String s;
    String& result = (s = "abc");
    EXPECT_EQ(&result, &s);
    EXPECT_EQ(s.capacity, 4u);
    EXPECT_EQ(s.length(), 3u);
    EXPECT_STREQ(s.getCString(), "abc");
}

TEST(String, AssignStringSetsAndReturnsSelf) {
    String s("ab");
    String other("xyz1");
    String& result = (s = other);
    EXPECT_EQ(&result, &s);
    EXPECT_EQ(s.capacity, 5u);
    EXPECT_STREQ(s.getCString(), "xyz1");
    EXPECT_STREQ(other.getCString(), "xyz1");
}

TEST(String, SelfAssignmentKeepsText) {
    String s("hello");
    String& alias = s;
    s = alias;
    EXPECT_EQ(s.capacity, 6u);
    EXPECT_EQ(s.length(), 5u);
    EXPECT_STREQ(s.getCString(), "hello");
}

// ---- append ----

TEST(String, AppendToDefaultGrowsToCapacityFour) {
    String s;
    s.append("abc");
    EXPECT_EQ(s.capacity, 4u);
    EXPECT_EQ(s.length(), 3u);
    EXPECT_EQ(s.data[3], '\0');
    EXPECT_STREQ(s.getCString(), "abc");
}

TEST(String, AppendGrowsToExactFit) {
    String s("ab");
    s.append("cd");
    EXPECT_EQ(s.capacity, 5u);
    EXPECT_EQ(s.length(), 4u);
    s.append("e");
    EXPECT_EQ(s.capacity, 6u);
    EXPECT_EQ(s.length(), 5u);
    s.append("");
    EXPECT_EQ(s.capacity, 6u);
    EXPECT_EQ(s.length(), 5u);
    EXPECT_STREQ(s.getCString(), "abcde");
}

TEST(String, AppendWithinCapacityDoesNotGrow) {
    String s;
    s.allocate(20);
    const char* before = s.getCString();
    s.append("abc");
    s += "def";
    EXPECT_EQ(s.capacity, 20u);
    EXPECT_EQ(s.getCString(), before);
    EXPECT_STREQ(s.getCString(), "abcdef");
}

TEST(String, AppendOwnCStringReadsBeforeFreeing) {
    String s("ab");
    s.append(s.getCString());
    EXPECT_EQ(s.capacity, 5u);
    EXPECT_EQ(s.length(), 4u);
    EXPECT_STREQ(s.getCString(), "abab");
}

TEST(String, AppendSelfDoublesText) {
    String s("ab");
    s += s;
    EXPECT_EQ(s.capacity, 5u);
    EXPECT_EQ(s.length(), 4u);
    EXPECT_STREQ(s.getCString(), "abab");
}

TEST(String, AppendStringTakesItsLengthIncludingEmbeddedNul) {
    String s("x");
    s.append(withEmbeddedNul());
    EXPECT_EQ(s.length(), 5u);
    EXPECT_EQ(s.capacity, 6u);
    EXPECT_EQ(std::memcmp(s.getCString(), "xab\0c\0", 6), 0);
}

TEST(String, PlusEqualsReturnsSelf) {
    String s("a");
    String& r1 = (s += "b");
    String& r2 = (s += String("c"));
    EXPECT_EQ(&r1, &s);
    EXPECT_EQ(&r2, &s);
    EXPECT_STREQ(s.getCString(), "abc");
}

TEST(String, PlusBuildsNewStringFromLeftThenAppendsRight) {
    String right("cd");
    String a = "ab" + right;
    String b = String("ab") + "cd";
    String c = String("ab") + right;
    EXPECT_STREQ(a.getCString(), "abcd");
    EXPECT_STREQ(b.getCString(), "abcd");
    EXPECT_STREQ(c.getCString(), "abcd");
    EXPECT_EQ(a.length(), 4u);
    EXPECT_EQ(a.capacity, 5u);
    EXPECT_EQ(b.capacity, 5u);
    EXPECT_EQ(c.capacity, 5u);
    EXPECT_STREQ(right.getCString(), "cd");
}

TEST(String, PlusBuildsFileNames) {
    String name = "screenshot_" + strInt(12) + ".bmp";
    EXPECT_STREQ(name.getCString(), "screenshot_12.bmp");
    EXPECT_EQ(name.length(), 17u);
}

// ---- appendChar ----

TEST(String, AppendCharGrowsOnlyWhenOneSlotIsLeft) {
    String s("");
    s.appendChar('a');
    EXPECT_EQ(s.capacity, 9u);
    EXPECT_EQ(s.length(), 1u);
    for (char c = 'b'; c <= 'h'; ++c) s.appendChar(c);
    EXPECT_EQ(s.capacity, 9u);
    EXPECT_EQ(s.length(), 8u);
    s.appendChar('i');
    EXPECT_EQ(s.capacity, 17u);
    EXPECT_EQ(s.length(), 9u);
    EXPECT_STREQ(s.getCString(), "abcdefghi");
}

TEST(String, AppendCharWithRoomDoesNotGrow) {
    String s("ab");
    s.allocate(10);
    s.appendChar('c');
    EXPECT_EQ(s.capacity, 10u);
    EXPECT_EQ(s.length(), 3u);
    EXPECT_STREQ(s.getCString(), "abc");
}

TEST(String, AppendCharWritesNoTerminator) {
    String s("abcdef");
    s.set("ab");
    s.appendChar('X');
    EXPECT_EQ(s.length(), 3u);
    EXPECT_EQ(s.capacity, 7u);
    EXPECT_STREQ(s.getCString(), "abXdef");
}

TEST(String, AppendCharOnDefaultStringLandsOnLastByte) {
    String s;
    s.appendChar('x');
    EXPECT_EQ(s.capacity, 0u);
    EXPECT_EQ(s.length(), 1u);
    EXPECT_EQ(s.data[0], 'x');
    // Index 1 is past capacity 0, so it lands on byte 0 again.
    s.appendChar('y');
    EXPECT_EQ(s.length(), 2u);
    EXPECT_EQ(s.data[0], 'y');
}

// ---- comparison ----

TEST(String, EqualityComparesLengthAndBytes) {
    EXPECT_TRUE(String("abc") == String("abc"));
    EXPECT_FALSE(String("abc") == String("abd"));
    EXPECT_FALSE(String("abc") == String("ab"));
    EXPECT_FALSE(String("ab") == String("abc"));
}

TEST(String, EmptyStringsAreEqual) {
    EXPECT_TRUE(String() == String(""));
    String cleared("hello");
    cleared.clear();
    EXPECT_TRUE(cleared == String());
}

TEST(String, EqualityLooksPastEmbeddedNul) {
    String a = withEmbeddedNul();
    String b = withEmbeddedNul();
    EXPECT_TRUE(a == b);
    b.data[3] = 'd';
    EXPECT_FALSE(a == b);
    EXPECT_FALSE(a == String("ab"));
}

TEST(String, EqualsString) {
    EXPECT_TRUE(String("abc").equals(String("abc")));
    EXPECT_FALSE(String("abc").equals(String("abx")));
    EXPECT_FALSE(String("abc").equals(String("abcd")));
    EXPECT_TRUE(String().equals(String("")));
}

TEST(String, EqualsCStringComparesLengthAndBytes) {
    EXPECT_TRUE(String("abc").equals("abc"));
    EXPECT_FALSE(String("abc").equals("abcd"));
    EXPECT_FALSE(String("abc").equals("abd"));
    EXPECT_TRUE(String().equals(""));
    EXPECT_FALSE(withEmbeddedNul().equals("ab"));
}

TEST(String, NullCStringIsNeverEqual) {
    const char* none = nullptr;
    String s("abc");
    String empty;
    EXPECT_FALSE(s.equals(none));
    EXPECT_FALSE(empty.equals(none));
    EXPECT_FALSE(s == none);
    EXPECT_FALSE(none == s);
    EXPECT_FALSE(empty == none);
    EXPECT_TRUE(s != none);
    EXPECT_TRUE(none != s);
}

TEST(String, CStringOperatorsWorkInBothOrders) {
    String s("abc");
    EXPECT_TRUE(s == "abc");
    EXPECT_TRUE("abc" == s);
    EXPECT_FALSE(s == "ab");
    EXPECT_FALSE("abcd" == s);
    EXPECT_FALSE(s != "abc");
    EXPECT_FALSE("abc" != s);
    EXPECT_TRUE(s != "abx");
    EXPECT_TRUE("xbc" != s);
}

TEST(String, StringEqualsComparesCStrings) {
    EXPECT_TRUE(stringEquals("abc", "abc"));
    EXPECT_TRUE(stringEquals("", ""));
    EXPECT_FALSE(stringEquals("abc", "abd"));
    EXPECT_FALSE(stringEquals("abc", "ab"));
    EXPECT_FALSE(stringEquals("", "a"));
}

TEST(String, StringLengthOfCStringAndString) {
    EXPECT_EQ(stringLength("hello"), 5u);
    EXPECT_EQ(stringLength(""), 0u);
    EXPECT_EQ(stringLength(String("hello")), 5u);
    EXPECT_EQ(stringLength(withEmbeddedNul()), 4u);
}

// ---- indexOf ----

TEST(String, IndexOfFindsFirstStart) {
    String s("hello");
    EXPECT_EQ(s.indexOf(String("lo"), 0), 3);
    EXPECT_EQ(s.indexOf(String("l"), 0), 2);
    EXPECT_EQ(s.indexOf(String("l"), 3), 3);
    EXPECT_EQ(s.indexOf(String("hello"), 0), 0);
    EXPECT_EQ(String("abab").indexOf(String("ab"), 1), 2);
}

TEST(String, IndexOfFromTooLateIsMinusOne) {
    String s("hello");
    EXPECT_EQ(s.indexOf(String("lo"), 4), -1);
    EXPECT_EQ(s.indexOf(String("l"), 4), -1);
    EXPECT_EQ(s.indexOf(String("o"), 6), -1);
}

TEST(String, IndexOfMissingOrLongerNeedleIsMinusOne) {
    String s("hello");
    EXPECT_EQ(s.indexOf(String("xyz"), 0), -1);
    EXPECT_EQ(s.indexOf(String("hello!"), 0), -1);
    EXPECT_EQ(String("hi").indexOf(String("hello"), 0), -1);
}

TEST(String, IndexOfEmptyNeedleFindsFirstNul) {
    String s("hello");
    EXPECT_EQ(s.indexOf(String(""), 0), 5);
    EXPECT_EQ(s.indexOf(String(), 2), 5);
    EXPECT_EQ(s.indexOf(String(), 5), 5);
    EXPECT_EQ(s.indexOf(String(), 6), -1);
    EXPECT_EQ(String("").indexOf(String(), 0), 0);
    EXPECT_EQ(withEmbeddedNul().indexOf(String(), 0), 2);
}

TEST(String, IndexOfSearchesPastEmbeddedNul) {
    EXPECT_EQ(withEmbeddedNul().indexOf(String("c"), 0), 3);
}

// ---- indexOfLast ----

TEST(String, IndexOfLastAnswersOneBeforeNeedleStart) {
    String s("hello");
    EXPECT_EQ(s.indexOfLast(String("lo"), 0), 2);
    EXPECT_EQ(s.indexOfLast(String("lo"), 1), 2);
}

TEST(String, IndexOfLastComparesOnlyLastCharacter) {
    String s("hello");
    EXPECT_EQ(s.indexOfLast(String("xo"), 0), 2);
    // The last 'l' is at 3; the answer is 3 - 1.
    EXPECT_EQ(s.indexOfLast(String("l"), 0), 2);
    EXPECT_EQ(s.indexOfLast(String("zz"), 0), -1);
}

TEST(String, IndexOfLastStopsAtNeedleLength) {
    String s("hello");
    // Scanning 3 down to 2 meets only 'l'.
    EXPECT_EQ(s.indexOfLast(String("lo"), 2), -1);
    // Index 0 is below the needle's length, so 'h' is never looked at.
    EXPECT_EQ(s.indexOfLast(String("h"), 0), -1);
    // A needle as long as the string is compared with the terminator alone.
    EXPECT_EQ(s.indexOfLast(String("hello"), 0), -1);
}

TEST(String, IndexOfLastFromTooLateIsMinusOne) {
    String s("hello");
    EXPECT_EQ(s.indexOfLast(String("o"), 5), -1);
    EXPECT_EQ(s.indexOfLast(String("lo"), 4), -1);
    EXPECT_EQ(s.indexOfLast(String("hello!"), 0), -1);
}

TEST(String, IndexOfLastEmptyNeedleLooksForNul) {
    String s("hello");
    EXPECT_EQ(s.indexOfLast(String(), 0), 5);
    EXPECT_EQ(s.indexOfLast(String(), 1), -1);
    EXPECT_EQ(String("").indexOfLast(String(), 0), -1);
}

// ---- remove and removeTrailing ----

TEST(String, RemoveCutsFirstOccurrence) {
    String s("hello world");
    EXPECT_EQ(s.remove(String("o")), 10);
    EXPECT_EQ(s.length(), 10u);
    EXPECT_EQ(s.capacity, 12u);
    EXPECT_STREQ(s.getCString(), "hell world");
    EXPECT_EQ(s.data[10], '\0');
    EXPECT_EQ(s.data[11], '\0');
}

TEST(String, RemoveZeroesFreedTail) {
    String s("abcabc");
    EXPECT_EQ(s.remove(String("bc")), 4);
    EXPECT_STREQ(s.getCString(), "aabc");
    EXPECT_EQ(s.data[4], '\0');
    EXPECT_EQ(s.data[5], '\0');
}

TEST(String, RemoveWholeTextLeavesEmpty) {
    String s("abc");
    EXPECT_EQ(s.remove(String("abc")), 0);
    EXPECT_EQ(s.length(), 0u);
    EXPECT_EQ(s.capacity, 4u);
    EXPECT_EQ(std::memcmp(s.getCString(), "\0\0\0\0", 4), 0);
}

TEST(String, RemoveMissingNeedleIsMinusOneAndChangesNothing) {
    String s("hello");
    EXPECT_EQ(s.remove(String("zz")), -1);
    EXPECT_EQ(s.length(), 5u);
    EXPECT_STREQ(s.getCString(), "hello");
}

TEST(String, RemoveEmptyNeedleKeepsText) {
    String s("hello");
    EXPECT_EQ(s.remove(String()), 5);
    EXPECT_STREQ(s.getCString(), "hello");
}

TEST(String, RemoveTrailingCutsAtIndexOfLastPosition) {
    String s("hello");
    EXPECT_EQ(s.removeTrailing(String("lo")), 3);
    EXPECT_EQ(s.length(), 3u);
    EXPECT_STREQ(s.getCString(), "heo");
    EXPECT_EQ(s.data[3], '\0');
    EXPECT_EQ(s.data[4], '\0');

    String t("abcab");
    EXPECT_EQ(t.removeTrailing(String("b")), 4);
    EXPECT_STREQ(t.getCString(), "abcb");
}

TEST(String, RemoveTrailingMissingNeedleIsMinusOne) {
    String s("hello");
    EXPECT_EQ(s.removeTrailing(String("zz")), -1);
    EXPECT_STREQ(s.getCString(), "hello");
}

// ---- trim ----

TEST(String, TrimStripsSpaceTabAndNewline) {
    String s("\t a b \n");
    EXPECT_EQ(s.trim(), 3u);
    EXPECT_EQ(s.length(), 3u);
    EXPECT_EQ(s.capacity, 4u);
    EXPECT_STREQ(s.getCString(), "a b");
}

TEST(String, TrimKeepsCarriageReturn) {
    String s(" \rx\r ");
    EXPECT_EQ(s.trim(), 3u);
    EXPECT_STREQ(s.getCString(), "\rx\r");
    EXPECT_EQ(s.capacity, 4u);
}

TEST(String, TrimOfAllWhitespaceEndsEmpty) {
    String s(" \t\n ");
    EXPECT_EQ(s.trim(), 0u);
    EXPECT_EQ(s.length(), 0u);
    EXPECT_EQ(s.capacity, 1u);
    EXPECT_STREQ(s.getCString(), "");
}

TEST(String, TrimOfSingleWhitespaceEndsEmpty) {
    String s("\n");
    EXPECT_EQ(s.trim(), 0u);
    EXPECT_EQ(s.capacity, 1u);
    EXPECT_STREQ(s.getCString(), "");
}

TEST(String, TrimOfEmptyStringGivesCapacityOne) {
    String a("");
    EXPECT_EQ(a.trim(), 0u);
    EXPECT_EQ(a.capacity, 1u);
    String b;
    EXPECT_EQ(b.trim(), 0u);
    EXPECT_EQ(b.capacity, 1u);
    EXPECT_STREQ(b.getCString(), "");
}

TEST(String, TrimOneSidedWhitespace) {
    String left(" x");
    EXPECT_EQ(left.trim(), 1u);
    EXPECT_STREQ(left.getCString(), "x");
    String right("x ");
    EXPECT_EQ(right.trim(), 1u);
    EXPECT_STREQ(right.getCString(), "x");
}

TEST(String, TrimShrinksToExactFit) {
    String s("abc");
    s.allocate(20);
    EXPECT_EQ(s.trim(), 3u);
    EXPECT_EQ(s.capacity, 4u);
    EXPECT_STREQ(s.getCString(), "abc");
}

TEST(String, TrimKeepsInnerWhitespace) {
    String s("  hello \t world  ");
    EXPECT_EQ(s.trim(), 13u);
    EXPECT_STREQ(s.getCString(), "hello \t world");
    EXPECT_EQ(s.capacity, 14u);
}

// ---- substring ----

TEST(String, SubstringFromIndexToEnd) {
    String s("hello");
    String tail = s.substring(2);
    EXPECT_STREQ(tail.getCString(), "llo");
    EXPECT_EQ(tail.length(), 3u);
    EXPECT_EQ(tail.capacity, 4u);
    EXPECT_STREQ(s.substring(0).getCString(), "hello");
    EXPECT_STREQ(s.substring(4).getCString(), "o");
}

TEST(String, SubstringFromLengthOrBeyondIsEmpty) {
    String s("hello");
    EXPECT_TRUE(s.substring(5).isEmpty());
    EXPECT_TRUE(s.substring(9).isEmpty());
}

TEST(String, SubstringFromIndexStopsAtNul) {
    String part = withEmbeddedNul().substring(1);
    EXPECT_EQ(part.length(), 1u);
    EXPECT_STREQ(part.getCString(), "b");
}

TEST(String, SubstringRangeExcludesEnd) {
    String s("hello");
    String mid = s.substring(1, 4);
    EXPECT_STREQ(mid.getCString(), "ell");
    EXPECT_EQ(mid.length(), 3u);
    EXPECT_EQ(mid.capacity, 4u);
    EXPECT_STREQ(s.substring(0, 4).getCString(), "hell");
    EXPECT_STREQ(s.substring(3, 4).getCString(), "l");
}

TEST(String, SubstringRangeEndingAtLengthIsEmpty) {
    String s("hello");
    EXPECT_TRUE(s.substring(1, 5).isEmpty());
    EXPECT_STREQ(s.substring(1, 5).getCString(), "");
    EXPECT_TRUE(s.substring(0, 5).isEmpty());
    EXPECT_TRUE(s.substring(4, 5).isEmpty());
}

TEST(String, SubstringOfEmptyRangeIsEmpty) {
    String s("hello");
    EXPECT_TRUE(s.substring(2, 2).isEmpty());
    EXPECT_TRUE(s.substring(0, 0).isEmpty());
}

// ---- parsing ----

TEST(String, ParseIntegerReadsDecimalHexAndOctal) {
    EXPECT_EQ(String("42").parseInteger(), 42);
    EXPECT_EQ(String("-12").parseInteger(), -12);
    EXPECT_EQ(String("0x1F").parseInteger(), 31);
    EXPECT_EQ(String("017").parseInteger(), 15);
    EXPECT_EQ(String("  7").parseInteger(), 7);
    EXPECT_EQ(String("12abc").parseInteger(), 12);
    EXPECT_EQ(String("abc").parseInteger(), 0);
    EXPECT_EQ(String().parseInteger(), 0);
}

TEST(String, ParseLongKeepsWideValues) {
    EXPECT_EQ(String("0x7fffffffff").parseLong(), 549755813887L);
    EXPECT_EQ(String("010").parseLong(), 8L);
    EXPECT_EQ(String("-3000000000").parseLong(), -3000000000L);
}

TEST(String, ParseFloatAndDouble) {
    EXPECT_EQ(String("1.5").parseFloat(), 1.5f);
    EXPECT_EQ(String("-0.25").parseFloat(), -0.25f);
    EXPECT_EQ(String("2.25").parseDouble(), 2.25);
    EXPECT_EQ(String("1e3").parseDouble(), 1000.0);
    EXPECT_EQ(String("x").parseDouble(), 0.0);
}

// ---- printing ----

TEST(String, PrintWritesTextWithoutLineEnd) {
    testing::internal::CaptureStdout();
    String("hello").print();
    String(" world").print();
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "hello world");
}

TEST(String, PrintlnEndsWithLineEnd) {
    testing::internal::CaptureStdout();
    String("hello").println();
    String().println();
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "hello\n\n");
}

// ---- number formatting ----

TEST(NumberFormat, ToStringIntPrintsDecimal) {
    EXPECT_STREQ(toString(0).getCString(), "0");
    EXPECT_STREQ(toString(-42).getCString(), "-42");
    EXPECT_STREQ(toString(2147483647).getCString(), "2147483647");
    EXPECT_STREQ(toString(-2147483647 - 1).getCString(), "-2147483648");
}

TEST(NumberFormat, ToStringDoubleEndsWithCapitalL) {
    EXPECT_STREQ(toString(1.5).getCString(), "1.500000L");
    EXPECT_STREQ(toString(-0.25).getCString(), "-0.250000L");
    EXPECT_STREQ(toString(0.0).getCString(), "0.000000L");
    EXPECT_STREQ(toString(2.0 / 3.0).getCString(), "0.666667L");
}

TEST(NumberFormat, CharToStringGivesOneCharacter) {
    String a = charToString('a');
    EXPECT_STREQ(a.getCString(), "a");
    EXPECT_EQ(a.length(), 1u);
    EXPECT_EQ(a.capacity, 2u);
}

TEST(NumberFormat, CharToStringOfNulIsEmpty) {
    String s = charToString('\0');
    EXPECT_EQ(s.length(), 0u);
    EXPECT_EQ(s.capacity, 1u);
    EXPECT_STREQ(s.getCString(), "");
}

TEST(NumberFormat, StrCharAndStrUCharPrintDecimal) {
    EXPECT_STREQ(strChar(-128).getCString(), "-128");
    EXPECT_STREQ(strChar(127).getCString(), "127");
    EXPECT_STREQ(strChar(0).getCString(), "0");
    EXPECT_STREQ(strUChar(255).getCString(), "255");
    EXPECT_STREQ(strUChar(0).getCString(), "0");
}

TEST(NumberFormat, StrIntPrintsDecimal) {
    EXPECT_STREQ(strInt(-5).getCString(), "-5");
    EXPECT_STREQ(strInt(0).getCString(), "0");
    EXPECT_STREQ(strInt(123456).getCString(), "123456");
}

TEST(NumberFormat, StrUIntPrintsAsSignedInt) {
    EXPECT_STREQ(strUInt(4294967295u).getCString(), "-1");
    EXPECT_STREQ(strUInt(2147483648u).getCString(), "-2147483648");
    EXPECT_STREQ(strUInt(2147483647u).getCString(), "2147483647");
    EXPECT_STREQ(strUInt(7u).getCString(), "7");
}

TEST(NumberFormat, StrLongPrintsIntWidthThenLetterL) {
    EXPECT_STREQ(strLong(7).getCString(), "7l");
    EXPECT_STREQ(strLong(-3).getCString(), "-3l");
    EXPECT_STREQ(strLong(0).getCString(), "0l");
    // 2^32 + 5: only the low 32 bits reach the text.
    EXPECT_STREQ(strLong(4294967301L).getCString(), "5l");
    EXPECT_STREQ(strLong(2147483648L).getCString(), "-2147483648l");
}

TEST(NumberFormat, StrULongPrintsLikeStrLong) {
    EXPECT_STREQ(strULong(7ul).getCString(), "7l");
    EXPECT_STREQ(strULong(0xFFFFFFFFFFFFFFFFul).getCString(), "-1l");
    EXPECT_STREQ(strULong(4294967296ul).getCString(), "0l");
}

TEST(NumberFormat, StrFloatPrintsSixDecimals) {
    EXPECT_STREQ(strFloat(1.5f).getCString(), "1.500000");
    EXPECT_STREQ(strFloat(-2.25f).getCString(), "-2.250000");
    EXPECT_STREQ(strFloat(0.1f).getCString(), "0.100000");
    EXPECT_STREQ(strFloat(0.0f).getCString(), "0.000000");
}

TEST(NumberFormat, StrDoubleEndsWithCapitalL) {
    EXPECT_STREQ(strDouble(2.5).getCString(), "2.500000L");
    EXPECT_STREQ(strDouble(1.0 / 3.0).getCString(), "0.333333L");
    EXPECT_STREQ(strDouble(-1.0).getCString(), "-1.000000L");
}

TEST(NumberFormat, StrCharHexWidensWithSign) {
    EXPECT_STREQ(strCharHex(-1).getCString(), "FFFFFFFF");
    EXPECT_STREQ(strCharHex(-128).getCString(), "FFFFFF80");
    EXPECT_STREQ(strCharHex(127).getCString(), "7F");
    EXPECT_STREQ(strCharHex(15).getCString(), "F");
    EXPECT_STREQ(strCharHex(0).getCString(), "0");
}

TEST(NumberFormat, StrUCharHexPrintsUppercase) {
    EXPECT_STREQ(strUCharHex(255).getCString(), "FF");
    EXPECT_STREQ(strUCharHex(171).getCString(), "AB");
    EXPECT_STREQ(strUCharHex(0).getCString(), "0");
}

TEST(NumberFormat, StrIntHexPrintsUppercase) {
    EXPECT_STREQ(strIntHex(255).getCString(), "FF");
    EXPECT_STREQ(strIntHex(48879).getCString(), "BEEF");
    EXPECT_STREQ(strIntHex(-1).getCString(), "FFFFFFFF");
    EXPECT_STREQ(strIntHex(2147483647).getCString(), "7FFFFFFF");
}

TEST(NumberFormat, StrUIntHexPrintsUppercase) {
    EXPECT_STREQ(strUIntHex(0xDEADBEEFu).getCString(), "DEADBEEF");
    EXPECT_STREQ(strUIntHex(16u).getCString(), "10");
}

TEST(NumberFormat, StrLongHexPrintsLowBitsThenLetterL) {
    EXPECT_STREQ(strLongHex(255L).getCString(), "FFl");
    EXPECT_STREQ(strLongHex(-1L).getCString(), "FFFFFFFFl");
    EXPECT_STREQ(strLongHex(0x123456789AL).getCString(), "3456789Al");
}

TEST(NumberFormat, StrULongHexPrintsLikeStrLongHex) {
    EXPECT_STREQ(strULongHex(0xABCul).getCString(), "ABCl");
    EXPECT_STREQ(strULongHex(0xFFFFFFFFFFFFFFFFul).getCString(), "FFFFFFFFl");
}

TEST(NumberFormat, StrPointerPrintsAddress) {
    EXPECT_STREQ(strPointer(reinterpret_cast<const void*>(std::uintptr_t{0x1234})).getCString(), "0x1234");
    EXPECT_STREQ(strPointer(reinterpret_cast<const void*>(std::uintptr_t{0xdeadbeef})).getCString(),
                 "0xdeadbeef");
    EXPECT_STREQ(strPointer(nullptr).getCString(), "(nil)");
}

TEST(NumberFormat, ResultsAreExactFitStrings) {
    String s = strInt(-5);
    EXPECT_EQ(s.length(), 2u);
    EXPECT_EQ(s.capacity, 3u);
}

TEST(NumberFormat, FormattersShareOneClearedBuffer) {
    strInt(1234567);
    EXPECT_STREQ(__t_strv, "1234567");
    strInt(7);
    EXPECT_EQ(__t_strv[0], '7');
    for (unsigned i = 1; i < NUMBER_TEXT_SIZE; ++i) {
        ASSERT_EQ(__t_strv[i], '\0') << "byte " << i;
    }
    charToString('q');
    EXPECT_STREQ(__t_strv, "q");
}

TEST(NumberFormat, ResultDoesNotChangeWithLaterFormatting) {
    String first = strInt(11);
    String second = strInt(22);
    EXPECT_STREQ(first.getCString(), "11");
    EXPECT_STREQ(second.getCString(), "22");
}

TEST(NumberFormat, LongTextIsCutToBufferSize) {
    // 1e300 prints 301 integer digits, so the 254 kept characters are all digits.
    String s = strDouble(1e300);
    EXPECT_EQ(s.length(), 254u);
    EXPECT_EQ(s.capacity, 255u);
    EXPECT_EQ(s.getCString()[0], '1');
    for (unsigned i = 0; i < s.length(); ++i) {
        ASSERT_TRUE(isDigit(s.getCString()[i])) << "character " << i;
    }
    EXPECT_EQ(__t_strv[254], '\0');
}
