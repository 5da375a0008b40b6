// What the examples share, as far as the programs' own tests do not show it.

#include <gtest/gtest.h>

#include <common/CsvTable.h>
#include <common/Gnuplot.h>
#include <common/OutputFolder.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace {

namespace fs = std::filesystem;
using Examples::OutputFolder;
using Examples::Place;

std::string contentOf(fs::path const& file) {
    std::ostringstream content;
    content << std::ifstream(file).rdbuf();
    return content.str();
}

class ExampleFolder : public testing::Test {
protected:
    void SetUp() override {
        std::string pattern = (fs::temp_directory_path() / "example-XXXXXX").string();
        ASSERT_NE(mkdtemp(pattern.data()), nullptr);
        root = pattern;
    }
    void TearDown() override { fs::remove_all(root); }

    fs::path root;
    Place place;
};

TEST_F(ExampleFolder, WithoutCommitNothingStays) {
    {
        OutputFolder folder(root / "a" / "b", {});
        ASSERT_TRUE(folder.open(place));
        ASSERT_TRUE(folder.write("x.csv", "1\n", place));
        EXPECT_FALSE(fs::exists(root / "a" / "b" / "x.csv"));
    }
    EXPECT_FALSE(fs::exists(root / "a"));
    {
        OutputFolder folder(root / "a" / "b", {});
        ASSERT_TRUE(folder.open(place));
        ASSERT_TRUE(folder.write("x.csv", "1\n", place));
        ASSERT_TRUE(folder.commit(place));
    }
    EXPECT_EQ(contentOf(root / "a" / "b" / "x.csv"), "1\n");
    EXPECT_EQ(std::distance(fs::directory_iterator(root / "a" / "b"), {}), 1);
}

TEST_F(ExampleFolder, AFailedCommitLeavesTheFolderAsItWas) {
    std::ofstream(root / "a.csv") << "older";
    std::ofstream(root / "stale.csv") << "stale";
    fs::create_directory(root / "z.csv");
    std::ofstream(root / "z.csv" / "mine") << "mine";
    {
        OutputFolder folder(root, {"a.csv", "stale.csv", "z.csv"});
        ASSERT_TRUE(folder.open(place));
        ASSERT_TRUE(folder.write("a.csv", "newer", place));
        ASSERT_TRUE(folder.write("z.csv", "newer", place));
        auto const committed = folder.commit(place);
        ASSERT_FALSE(committed);
        EXPECT_EQ(describe(place, committed.error()),
                  (root / "z.csv").string() + ": file cannot be written (Is a directory)");
    }
    EXPECT_EQ(contentOf(root / "a.csv"), "older");
    EXPECT_EQ(contentOf(root / "stale.csv"), "stale");
    EXPECT_EQ(contentOf(root / "z.csv" / "mine"), "mine");
    EXPECT_EQ(std::distance(fs::directory_iterator(root), {}), 3);
}

TEST_F(ExampleFolder, ARunDoesNotDisturbAnotherThatIsUnderWay) {
    OutputFolder first(root, {});
    ASSERT_TRUE(first.open(place));
    ASSERT_TRUE(first.write("first.csv", "1", place));
    {
        OutputFolder second(root, {});
        ASSERT_TRUE(second.open(place));
        ASSERT_TRUE(second.write("second.csv", "2", place));
        ASSERT_TRUE(second.commit(place));
    }
    ASSERT_TRUE(first.commit(place));
    EXPECT_EQ(contentOf(root / "first.csv"), "1");
    EXPECT_EQ(contentOf(root / "second.csv"), "2");
}

TEST_F(ExampleFolder, TheFoldersOfDeadRunsAreRemoved) {
    fs::create_directories(root / ".unfinished-000000" / "replaced");
    OutputFolder folder(root, {});
    ASSERT_TRUE(folder.open(place));
    EXPECT_FALSE(fs::exists(root / ".unfinished-000000"));
    EXPECT_TRUE(fs::exists(folder.temporary()));
}

TEST_F(ExampleFolder, AnAbsentFileIsNotReadable) {
    EXPECT_EQ(readCsv(root / "absent.csv", {"a"}, place).error(),
              Examples::ErrorCode2(Examples::FileFailure::FileNotReadable));
}

TEST(ExampleText, RowsGiveEveryNumberBackExactly) {
    std::string text;
    Examples::appendRow(text, 0.1, 1e300, 3, -0.0);
    EXPECT_EQ(text, "0.1,1e+300,3,-0\n");
}

TEST(ExampleText, NumbersAreSpelledCompletelyAndAreFinite) {
    EXPECT_EQ(Examples::parseNumber("-1.5e3").value(), -1500.0);
    for (char const* const text : {"", " 1", "1 ", "1,5", "nan", "inf", "1e999", "0x10"}) {
        EXPECT_FALSE(Examples::parseNumber(text)) << text;
    }
}

TEST(ExampleText, NothingEndsAStringOfGnuplots) {
    EXPECT_EQ(Examples::quotedForGnuplot("it's \"x\" \\"), "'it''s \"x\" \\'");
}

} // namespace
