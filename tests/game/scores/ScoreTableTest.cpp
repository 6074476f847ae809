// The table of the ten best games: where an entry goes, who keeps a tied rank, the cut at ten,
// and the text of the scores file, which reads back to the same table.

#include "game/scores/ScoreTable.h"

#include <algorithm>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include "tests/game/scores/ScoreEntries.h"

namespace {

ScoreEntry entry(const std::string& name, uint32_t score, uint32_t wave = 1, int64_t when = 1700000000) {
    return testing_support::scoreEntry(name, score, wave, when);
}

std::string names(const ScoreTable& table) {
    std::string all;
    for (const ScoreEntry& e : table.entries()) all += e.name + " ";
    return all;
}

} // namespace

TEST(ScoreTable, EntriesRankBestFirst) {
    ScoreTable table;
    EXPECT_EQ(table.add(entry("b", 200)), 0);
    EXPECT_EQ(table.add(entry("c", 100)), 1);
    EXPECT_EQ(table.add(entry("a", 300)), 0);
    EXPECT_EQ(table.add(entry("d", 150)), 2);
    EXPECT_EQ(names(table), "a b d c ");
}

TEST(ScoreTable, OfTwoEqualScoresTheEarlierKeepsTheHigherRank) {
    ScoreTable table;
    table.add(entry("first", 500));
    table.add(entry("low", 100));
    EXPECT_EQ(table.add(entry("second", 500)), 1);
    EXPECT_EQ(names(table), "first second low ");
}

TEST(ScoreTable, RenameGivesTheEqualEntryItsNewNameAndKeepsItsPlace) {
    ScoreTable table;
    table.add(entry("a", 300));
    table.add(entry("b", 200, 4, 1764000100));
    table.add(entry("b", 200, 4, 1764000200));
    EXPECT_EQ(table.rename(entry("b", 200, 4, 1764000200), "Zed"), 2);
    EXPECT_EQ(names(table), "a b Zed ");
    // Score, wave and time must all be equal too.
    EXPECT_EQ(table.rename(entry("a", 300, 9), "X"), -1);
    EXPECT_EQ(table.rename(entry("a", 301), "X"), -1);
    EXPECT_EQ(table.rename(entry("q", 300), "X"), -1);
    EXPECT_EQ(names(table), "a b Zed ");
}

TEST(ScoreTable, TheTableKeepsTenAndTheEleventhFallsOut) {
    ScoreTable table;
    for (uint32_t i = 1; i <= 10; ++i) table.add(entry("p" + std::to_string(i), i * 10));
    EXPECT_EQ(table.add(entry("new", 55)), 5);
    ASSERT_EQ(table.entries().size(), 10u);
    EXPECT_EQ(table.entries().front().score, 100u);
    EXPECT_EQ(table.entries().back().score, 20u);
}

TEST(ScoreTable, AFullTableTakesNoScoreAtOrBelowItsTenth) {
    ScoreTable table;
    EXPECT_TRUE(table.qualifies(0));
    for (uint32_t i = 1; i <= 10; ++i) table.add(entry("p", i * 10));
    EXPECT_FALSE(table.qualifies(10));
    EXPECT_TRUE(table.qualifies(11));
    EXPECT_EQ(table.add(entry("tie", 10)), -1);
    EXPECT_EQ(table.add(entry("low", 5)), -1);
    EXPECT_EQ(table.entries().back().name, "p");
    EXPECT_EQ(table.entries().size(), 10u);
}

TEST(ScoreTable, MergeAddsTheOtherTablesEntriesAfterEqualOnes) {
    ScoreTable mine, theirs;
    mine.add(entry("mine", 300));
    theirs.add(entry("theirs", 300));
    theirs.add(entry("top", 400));
    mine.merge(theirs);
    EXPECT_EQ(names(mine), "top mine theirs ");
}

TEST(ScoreTable, TheFileTextIsTheHeaderThenOneTabbedLinePerEntry) {
    ScoreTable table;
    table.add(entry("Ada L", 12345, 7, 1732406400));
    table.add(entry("pilot_2-b", 900, 2, 1700000000));
    table.linkReplay(1, "best-1700000000-900.nvr");
    EXPECT_EQ(table.format(), "nightvector scores 2\n"
                              "12345\t7\t1732406400\t-\tAda L\n"
                              "900\t2\t1700000000\tbest-1700000000-900.nvr\tpilot_2-b\n");
}

TEST(ScoreTable, TheOlderFilesWithoutReplaysReadWhole) {
    ScoreTable::Reading reading;
    const ScoreTable table = ScoreTable::parse("nightvector scores 1\n12345\t7\t1732406400\tAda L\n", reading);
    EXPECT_TRUE(reading.knownHeader);
    EXPECT_EQ(reading.kept, 1u);
    EXPECT_FALSE(reading.damaged());
    ASSERT_EQ(table.entries().size(), 1u);
    EXPECT_EQ(table.entries()[0].name, "Ada L");
    EXPECT_EQ(table.entries()[0].replay, "");
    EXPECT_EQ(table.format(), "nightvector scores 2\n12345\t7\t1732406400\t-\tAda L\n");
}

TEST(ScoreTable, AnEntryReadsItsReplayAndADashAsNone) {
    ScoreEntry e;
    ASSERT_TRUE(ScoreTable::parseLine("500\t3\t9\tbest-9-500-2.nvr\tVega", e));
    EXPECT_EQ(e.replay, "best-9-500-2.nvr");
    EXPECT_EQ(e.name, "Vega");
    ASSERT_TRUE(ScoreTable::parseLine("500\t3\t9\t-\tVega", e));
    EXPECT_EQ(e.replay, "");
}

TEST(ScoreTable, AReplayIsAPlainNvrFileNameThatIsNotTheLastGames) {
    EXPECT_TRUE(ScoreTable::isValidReplayName("best-1764000000-4200.nvr"));
    EXPECT_TRUE(ScoreTable::isValidReplayName("x.nvr"));
    EXPECT_TRUE(ScoreTable::isValidReplayName(std::string(60, 'a') + ".nvr")); // 64 characters
    EXPECT_FALSE(ScoreTable::isValidReplayName(std::string(61, 'a') + ".nvr"));
    EXPECT_FALSE(ScoreTable::isValidReplayName("last.nvr"));
    EXPECT_FALSE(ScoreTable::isValidReplayName(".nvr"));
    EXPECT_FALSE(ScoreTable::isValidReplayName("../scores.nvr"));
    EXPECT_FALSE(ScoreTable::isValidReplayName("a/b.nvr"));
    EXPECT_FALSE(ScoreTable::isValidReplayName("Best.nvr"));
    EXPECT_FALSE(ScoreTable::isValidReplayName("best.txt"));
    EXPECT_FALSE(ScoreTable::isValidReplayName("best.nvr.nvr"));
    EXPECT_FALSE(ScoreTable::isValidReplayName("-"));
    // An entry that names another file is not ours: the line is skipped, and nothing is deleted
    // in its name.
    ScoreEntry e;
    EXPECT_FALSE(ScoreTable::parseLine("500\t3\t9\t../../.bashrc\tVega", e));
    EXPECT_FALSE(ScoreTable::parseLine("500\t3\t9\tlast.nvr\tVega", e));
}

TEST(ScoreTable, TheTextReadsBackToTheSameTable) {
    ScoreTable table;
    for (uint32_t i = 0; i < 10; ++i) table.add(entry("n" + std::to_string(i), 4294967295u - i * 3, i + 1, 1000 + i));
    ScoreTable::Reading reading;
    const ScoreTable back = ScoreTable::parse(table.format(), reading);
    EXPECT_TRUE(reading.knownHeader);
    EXPECT_EQ(reading.kept, 10u);
    EXPECT_EQ(reading.skipped, 0u);
    EXPECT_FALSE(reading.damaged());
    EXPECT_EQ(back.format(), table.format());
}

TEST(ScoreTable, LinesThatAreNotWholeEntriesAreSkipped) {
    const char* const bad[] = {
        "",                                   // empty
        "100\t1\t5",                          // no name
        "100\t1\t5\t",                        // empty name
        "0100\t1\t5\tlead",                   // a leading zero
        "+100\t1\t5\tsign",                   // a sign
        "100 \t1\t5\tspace",                  // a space in a number
        "4294967296\t1\t5\tover",             // past 32 bits
        "100\t1\t5\tthirteen char",           // 13 characters
        "100\t1\t5\tbad!",                    // not a name character
        "100\t1\t5\tcr\r",                    // a carriage return
        "100\t1\t5\ttab\tin",                 // a fifth field
        "-1\t1\t5\tneg",                      // negative
    };
    for (const char* line : bad) {
        ScoreEntry e;
        EXPECT_FALSE(ScoreTable::parseLine(line, e)) << line;
    }
    ScoreEntry e;
    ASSERT_TRUE(ScoreTable::parseLine("4294967295\t0\t0\tZ", e));
    EXPECT_EQ(e.score, 4294967295u);
    EXPECT_EQ(e.wave, 0u);
    EXPECT_EQ(e.name, "Z");
}

TEST(ScoreTable, AForeignFirstLineOrACutLastLineMakeTheTextDamagedButTheEntriesStay) {
    ScoreTable::Reading reading;
    ScoreTable table = ScoreTable::parse("some other file\n300\t2\t9\tkept\n200\t1\t9\tcut", reading);
    EXPECT_FALSE(reading.knownHeader);
    EXPECT_EQ(reading.kept, 1u);
    EXPECT_EQ(reading.skipped, 2u);
    EXPECT_TRUE(reading.damaged());
    EXPECT_EQ(names(table), "kept ");
    table = ScoreTable::parse("nightvector scores 3\n300\t2\t9\tfuture\n", reading);
    EXPECT_FALSE(reading.knownHeader);
    EXPECT_EQ(names(table), "future ");
}

TEST(ScoreTable, AnEmptyTextIsAnEmptyTableThatIsNotOurs) {
    ScoreTable::Reading reading;
    EXPECT_TRUE(ScoreTable::parse("", reading).entries().empty());
    EXPECT_FALSE(reading.knownHeader);
    EXPECT_EQ(reading.skipped, 0u);
}

TEST(ScoreTable, MoreThanTenEntriesInATextKeepTheBestTen) {
    std::string text = std::string(ScoreTable::HEADER) + "\n";
    for (int i = 1; i <= 15; ++i) text += std::to_string(i) + "\t1\t1\tp" + std::to_string(i) + "\n";
    ScoreTable::Reading reading;
    const ScoreTable table = ScoreTable::parse(text, reading);
    EXPECT_EQ(reading.kept, 15u);
    ASSERT_EQ(table.entries().size(), 10u);
    EXPECT_EQ(table.entries().front().name, "p15");
    EXPECT_EQ(table.entries().back().name, "p6");
}

TEST(ScoreTable, FuzzedLinesAreEitherSkippedOrReadWhole) {
    // Real lines with one to three characters replaced, put in or taken out, so that most come
    // close to an entry; mostly characters that lines are made of.
    const std::string alphabet = "0123456789\t\tabcXYZ _-!\r\n\x80\xff\x01";
    const std::string real = "12345\t17\t1732406400\tbest-1-2.nvr\tAda L";
    std::mt19937 rng(20261124);
    int read = 0, skipped = 0;
    for (int i = 0; i < 100000; ++i) {
        std::string line = real;
        const int edits = 1 + (int)(rng() % 3);
        for (int k = 0; k < edits; ++k) {
            const size_t at = rng() % (line.size() + 1);
            const char c = alphabet[rng() % alphabet.size()];
            switch (rng() % 3) {
            case 0: if (at < line.size()) line[at] = c; break;
            case 1: line.insert(at, 1, c); break;
            default: if (at < line.size()) line.erase(at, 1); break;
            }
        }
        ScoreEntry e;
        if (ScoreTable::parseLine(line, e)) {
            ++read;
            // A line that lost its replay field reads as one of the older files' lines.
            std::string written = line;
            if (std::count(line.begin(), line.end(), '\t') == 3) written.insert(line.rfind('\t') + 1, "-\t");
            EXPECT_EQ(ScoreTable::formatLine(e), written);
        } else {
            ++skipped;
        }
    }
    // Both kinds must occur, or one of the checks above checked nothing.
    EXPECT_GT(read, 1000);
    EXPECT_GT(skipped, 1000);
}

TEST(ScoreTable, NamesAreOneToTwelveLettersDigitsSpacesDashesAndUnderscores) {
    EXPECT_TRUE(ScoreTable::isValidName("Pilot"));
    EXPECT_TRUE(ScoreTable::isValidName("a b-c_d 0123"));
    EXPECT_FALSE(ScoreTable::isValidName(""));
    EXPECT_FALSE(ScoreTable::isValidName("thirteen char"));
    EXPECT_FALSE(ScoreTable::isValidName("tab\there"));
    EXPECT_FALSE(ScoreTable::isValidName("caf\xc3\xa9"));
}
