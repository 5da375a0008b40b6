// The example converter_emi, run as a program: good input, every kind of bad input, options.

#include <gtest/gtest.h>

#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

std::string contentOf(fs::path const& file) {
    std::ifstream stream(file, std::ios::binary);
    std::ostringstream content;
    content << stream.rdbuf();
    return content.str();
}

std::size_t linesIn(std::string const& text) {
    return static_cast<std::size_t>(std::ranges::count(text, '\n'));
}

/// Runs a shell command whose standard streams are a terminal, and returns what appears on it.
std::string shownOnTerminal(std::string const& command) {
    int terminal = -1;
    pid_t const child = forkpty(&terminal, nullptr, nullptr, nullptr);
    if (child == 0) {
        execl("/bin/sh", "sh", "-c", command.c_str(), static_cast<char*>(nullptr));
        _exit(127);
    }
    std::string shown;
    char buffer[256];
    // At the end of the child, reading from a terminal fails.
    for (ssize_t n = 0; (n = read(terminal, buffer, sizeof buffer)) > 0;) {
        shown.append(buffer, static_cast<std::size_t>(n));
    }
    int status = -1;
    waitpid(child, &status, 0);
    close(terminal);
    EXPECT_EQ(status, 0) << command;
    return shown;
}

struct Outcome {
    int exitCode;
    std::string output;
    std::string errors;
};

/// Gives each test a folder of its own and runs the program on what the test puts there.
class ConverterEmiProgram : public testing::Test {
protected:
    void SetUp() override {
        std::string pattern = (fs::temp_directory_path() / "converter-emi-XXXXXX").string();
        ASSERT_NE(mkdtemp(pattern.data()), nullptr);
        folder = pattern;
    }
    void TearDown() override { fs::remove_all(folder); }

    /// Runs the program by the shell; @p before can feed it or change the folder first.
    Outcome run(std::string const& arguments, std::string const& before = "") const {
        std::string const command = before + "'" + CONVERTER_EMI_PROGRAM + "' " + arguments + " >'"
                                    + (folder / "stdout").string() + "' 2>'" + (folder / "stderr").string()
                                    + "'";
        int const status = std::system(command.c_str());
        return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, contentOf(folder / "stdout"),
                contentOf(folder / "stderr")};
    }

    /// Runs on the committed record, without plots.
    Outcome runOnData(std::string const& arguments) const {
        return run(std::string("'") + CONVERTER_EMI_DATA + "' --no-plots --output '" + output().string()
                   + "' " + arguments);
    }

    /// Arguments for a table that the test wrote; the record's period is 1 ms, so the band can be low.
    std::string tableArguments() const {
        return "--no-plots --signal signal_V --switching-frequency 1e3 --start 9e3 --stop 10e3 --output '"
               + output().string() + "' ";
    }
    Outcome runOnTable(std::string const& arguments = "") const {
        return run("'" + table().string() + "' " + tableArguments() + arguments);
    }

    void writeTable(std::string const& text) const { std::ofstream(table()) << text; }

    /// A table of @p rows rows, 10 microseconds apart, in which the test can spoil one line.
    static std::vector<std::string> goodTable(std::size_t rows = 300) {
        std::vector<std::string> lines{"time_s,signal_V"};
        for (std::size_t i = 0; i < rows; ++i) {
            lines.push_back(std::to_string(i) + "e-5," + std::to_string(i % 100 < 50 ? 1 : 0));
        }
        return lines;
    }

    void writeTable(std::vector<std::string> const& lines) const {
        std::string text;
        for (std::string const& line : lines) {
            text += line + "\n";
        }
        writeTable(text);
    }

    /// The run failed, said this, and left nothing behind.
    void expectRefusal(Outcome const& outcome, std::string const& message) const {
        EXPECT_EQ(outcome.exitCode, 1);
        EXPECT_EQ(outcome.output, "");
        EXPECT_EQ(outcome.errors, "converter_emi: " + message + "\n");
        EXPECT_FALSE(fs::exists(output().parent_path()));
    }

    fs::path table() const { return folder / "table.csv"; }
    fs::path output() const { return folder / "new" / "output"; }

    /// The files of the output folder and what is in them.
    std::map<std::string, std::string> outputFiles() const {
        std::map<std::string, std::string> files;
        for (auto const& entry : fs::directory_iterator(output())) {
            files[entry.path().filename().string()] = contentOf(entry.path());
        }
        return files;
    }

    fs::path folder;
};

TEST_F(ConverterEmiProgram, ReportHasAtMostSixtyLines) {
    Outcome const outcome = runOnData("--capacitor output_voltage_V capacitor_current_A");
    ASSERT_EQ(outcome.exitCode, 0) << outcome.errors;
    EXPECT_LE(linesIn(outcome.output), 60U);
    EXPECT_NE(outcome.output.find("80 switching periods at 400.000 kHz"), std::string::npos)
        << outcome.output;
    EXPECT_NE(outcome.output.find("with filter      PASS"), std::string::npos) << outcome.output;
    EXPECT_NE(outcome.output.find("without filter   FAIL"), std::string::npos) << outcome.output;
    EXPECT_EQ(outcome.errors, "");
}

TEST_F(ConverterEmiProgram, WritesTheTablesAndNothingElse) {
    ASSERT_EQ(runOnData("--capacitor output_voltage_V capacitor_current_A").exitCode, 0);
    auto const files = outputFiles();
    std::vector<std::string> names;
    for (auto const& [name, content] : files) {
        names.push_back(name);
    }
    EXPECT_EQ(names, (std::vector<std::string>{"capacitor.csv", "harmonics.csv", "limit.csv", "spectrum.csv",
                                               "summary.csv", "waveform.csv"}));
    EXPECT_EQ(linesIn(files.at("harmonics.csv")), 1U + 75U);
    EXPECT_EQ(linesIn(files.at("spectrum.csv")), 1U + 5971U);
    EXPECT_EQ(linesIn(files.at("waveform.csv")), 1U + 131072U);
    EXPECT_EQ(linesIn(files.at("capacitor.csv")), 1U + 5U);
    EXPECT_EQ(files.at("limit.csv"),
              "frequency_Hz,limit_dBuV\n150000,56\n500000,46\n5000000,46\n5000000,50\n30000000,50\n");
}

TEST_F(ConverterEmiProgram, DrawsTwoPlotsAsSvgAndPng) {
    if (std::system("gnuplot --version >/dev/null 2>&1") != 0) {
        GTEST_SKIP() << "gnuplot is not installed";
    }
    Outcome const outcome =
        run(std::string("'") + CONVERTER_EMI_DATA + "' --output '" + output().string() + "'");
    ASSERT_EQ(outcome.exitCode, 0) << outcome.errors;
    auto const files = outputFiles();
    for (std::string const name : {"waveform", "spectrum"}) {
        EXPECT_TRUE(files.at(name + ".png").starts_with("\x89PNG"));
        EXPECT_NE(files.at(name + ".svg").find("</svg>"), std::string::npos);
    }
    EXPECT_NE(files.at("spectrum.svg").find("frequency / MHz"), std::string::npos);
    EXPECT_NE(files.at("waveform.svg").find("time / µs"), std::string::npos);
}

TEST_F(ConverterEmiProgram, OutputIsTheSameUnderEveryExecutionPolicy) {
    std::string const columns = "--capacitor output_voltage_V capacitor_current_A --policy ";
    ASSERT_EQ(runOnData(columns + "inline").exitCode, 0);
    auto const expected = outputFiles();
    for (std::string const policy : {"parallel", "parallel-unsequenced", "sequenced"}) {
        fs::remove_all(output());
        ASSERT_EQ(runOnData(columns + policy).exitCode, 0);
        EXPECT_TRUE(outputFiles() == expected) << policy;
    }
}

TEST_F(ConverterEmiProgram, ASecondRunReplacesItsFilesAndKeepsOthers) {
    fs::create_directories(output());
    std::ofstream(output() / "notes.txt") << "mine";
    ASSERT_EQ(runOnData("").exitCode, 0);
    auto const first = outputFiles();
    ASSERT_EQ(runOnData("--window blackman").exitCode, 0);
    auto const second = outputFiles();
    EXPECT_EQ(second.at("notes.txt"), "mine");
    EXPECT_NE(second.at("spectrum.csv"), first.at("spectrum.csv"));
    EXPECT_EQ(second.size(), first.size());
}

TEST_F(ConverterEmiProgram, AFailedRunKeepsTheFilesOfTheLastOne) {
    ASSERT_EQ(runOnData("").exitCode, 0);
    auto const before = outputFiles();
    EXPECT_EQ(runOnData("--signal absent_V").exitCode, 1);
    EXPECT_TRUE(outputFiles() == before);
}

TEST_F(ConverterEmiProgram, FromNineKilohertzOnTheLowerLimitHolds) {
    ASSERT_EQ(runOnData("--start 9e3").exitCode, 0);
    auto const spectrum = outputFiles().at("spectrum.csv");
    std::string const secondLine = spectrum.substr(spectrum.find('\n') + 1);
    EXPECT_TRUE(secondLine.starts_with("10000,")) << secondLine.substr(0, 100);
    EXPECT_EQ(linesIn(spectrum), 1U + 5999U);
}

TEST_F(ConverterEmiProgram, TakesALimitLineFromAFile) {
    std::ofstream(folder / "limit.csv") << "limit_dBuV,frequency_Hz\n20,1e5\n20,1e8\n";
    Outcome const outcome = runOnData("--limit '" + (folder / "limit.csv").string() + "'");
    ASSERT_EQ(outcome.exitCode, 0) << outcome.errors;
    EXPECT_NE(outcome.output.find("with filter      FAIL"), std::string::npos) << outcome.output;
}

TEST_F(ConverterEmiProgram, ItsOwnLimitLineGivesTheSameResults) {
    ASSERT_EQ(runOnData("--start 2e5").exitCode, 0);
    auto const builtIn = outputFiles();
    std::ofstream(folder / "limit.csv") << builtIn.at("limit.csv");
    ASSERT_EQ(runOnData("--start 2e5 --limit '" + (folder / "limit.csv").string() + "'").exitCode, 0);
    EXPECT_EQ(outputFiles().at("limit.csv"), builtIn.at("limit.csv"));
    EXPECT_EQ(outputFiles().at("summary.csv"), builtIn.at("summary.csv"));
}

TEST_F(ConverterEmiProgram, TakesACaptureWithoutTimeColumn) {
    std::string const capture = CONVERTER_EMI_CAPTURE;
    if (capture.empty() || !fs::exists(capture)) {
        GTEST_SKIP() << "no capture is configured (TVNMATH_CONVERTER_CAPTURE)";
    }
    Outcome const outcome =
        run("'" + capture + "' --signal voltage_V --switching-frequency 200e3 --window none "
            + "--no-plots --output '" + output().string() + "'");
    ASSERT_EQ(outcome.exitCode, 0) << outcome.errors;
    EXPECT_NE(outcome.output.find("2 switching periods at 200.000 kHz, 10.000 us; mean 117.1 V"),
              std::string::npos)
        << outcome.output;
    EXPECT_LE(linesIn(outcome.output), 60U);
}

TEST_F(ConverterEmiProgram, TakesEvenlySpacedRowsAfterAComment) {
    std::string text = "# made by a test\n# sample_interval_s,1e-5\n\nsignal_V\n";
    for (int i = 0; i < 300; ++i) {
        text += i % 100 < 50 ? "1\n" : "0\n";
    }
    writeTable(text);
    Outcome const outcome = runOnTable();
    EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
    EXPECT_NE(outcome.output.find("3 switching periods"), std::string::npos) << outcome.output;
}

TEST_F(ConverterEmiProgram, TakesLinesThatEndInCarriageReturns) {
    auto lines = goodTable();
    for (std::string& line : lines) {
        line += '\r';
    }
    writeTable(lines);
    EXPECT_EQ(runOnTable().exitCode, 0);
}

TEST_F(ConverterEmiProgram, HelpNamesEveryOption) {
    Outcome const outcome = run("--help");
    EXPECT_EQ(outcome.exitCode, 0);
    for (char const* option :
         {"--time", "--signal", "--capacitor", "--switching-frequency", "--window", "--start", "--stop",
          "--limit", "--policy", "--output", "--samples", "--no-plots"}) {
        EXPECT_NE(outcome.output.find(option), std::string::npos) << option;
    }
}

TEST_F(ConverterEmiProgram, RefusesAnUnknownOption) {
    Outcome const outcome = runOnData("--volume 11");
    EXPECT_NE(outcome.exitCode, 0);
    EXPECT_NE(outcome.errors.find("--volume"), std::string::npos);
    EXPECT_FALSE(fs::exists(output()));
}

TEST_F(ConverterEmiProgram, RefusesAnUnknownWindow) {
    Outcome const outcome = runOnData("--window kaiser");
    EXPECT_NE(outcome.exitCode, 0);
    EXPECT_NE(outcome.errors.find("kaiser"), std::string::npos);
    EXPECT_FALSE(fs::exists(output()));
}

TEST_F(ConverterEmiProgram, RefusesASwitchingFrequencyThatIsNotPositive) {
    for (std::string const frequency : {"0", "-5", "fast", "nan", "inf"}) {
        Outcome const outcome = runOnData("--switching-frequency " + frequency);
        EXPECT_NE(outcome.exitCode, 0) << frequency;
        EXPECT_TRUE(
            outcome.errors.starts_with("--switching-frequency: '" + frequency + "' is not a positive number"))
            << outcome.errors;
        EXPECT_FALSE(fs::exists(output()));
    }
}

TEST_F(ConverterEmiProgram, RefusesAMissingFile) {
    expectRefusal(runOnTable(), table().string() + ": file cannot be read");
}

TEST_F(ConverterEmiProgram, RefusesAFolderAsFile) {
    fs::create_directory(table());
    expectRefusal(runOnTable(), table().string() + ": file cannot be read");
}

TEST_F(ConverterEmiProgram, RefusesAnEmptyFile) {
    writeTable("");
    expectRefusal(runOnTable(), table().string() + ": file holds no table");
    writeTable("# only\n\n# comments\n");
    expectRefusal(runOnTable(), table().string() + ": file holds no table");
}

TEST_F(ConverterEmiProgram, RefusesAMissingColumn) {
    writeTable(goodTable());
    expectRefusal(runOnTable("--signal current_A"),
                  table().string() + ":1: column is missing (no 'current_A' among: time_s, signal_V)");
}

TEST_F(ConverterEmiProgram, RefusesAMissingCapacitorColumn) {
    writeTable(goodTable());
    expectRefusal(runOnTable("--capacitor signal_V current_A"),
                  table().string() + ":1: column is missing (no 'current_A' among: time_s, signal_V)");
}

TEST_F(ConverterEmiProgram, RefusesAFieldThatIsNoNumber) {
    for (std::string const field : {"abc", "1.5x", "", "nan", "inf", "0x10", "1e999", "1 2"}) {
        auto lines = goodTable();
        lines[17] = "16e-5," + field;
        writeTable(lines);
        expectRefusal(runOnTable(),
                      table().string() + ":18:2: field is not a finite number (signal_V: '" + field + "')");
    }
}

TEST_F(ConverterEmiProgram, IgnoresColumnsThatNobodyAskedFor) {
    auto lines = goodTable();
    lines[0] += ",note";
    lines[17] += ",a note";
    writeTable(lines);
    EXPECT_EQ(runOnTable().exitCode, 0);
}

TEST_F(ConverterEmiProgram, RefusesADecimalComma) {
    auto lines = goodTable();
    lines[17] = "1,6e-4,1";
    writeTable(lines);
    expectRefusal(
        runOnTable(),
        table().string()
            + ":18: line has more fields than the header, as a decimal comma makes it (3 instead of 2)");
}

TEST_F(ConverterEmiProgram, RefusesALineThatEndsTooEarly) {
    auto lines = goodTable();
    lines[20] = "19e-5";
    writeTable(lines);
    expectRefusal(runOnTable(), table().string() + ":21:2: line ends before this column (signal_V)");
}

TEST_F(ConverterEmiProgram, RefusesQuotesThatDoNotMatch) {
    auto lines = goodTable();
    lines[20] = "19e-5,\"1";
    writeTable(lines);
    expectRefusal(runOnTable(), table().string() + ":21: line is not well-formed CSV");
}

TEST_F(ConverterEmiProgram, RefusesTimeThatDoesNotIncrease) {
    for (std::string const time : {"18e-5", "17e-5", "-1"}) {
        auto lines = goodTable();
        lines[20] = time + ",1";
        writeTable(lines);
        Outcome const outcome = runOnTable();
        EXPECT_EQ(outcome.exitCode, 1);
        EXPECT_TRUE(outcome.errors.starts_with("converter_emi: " + table().string()
                                               + ":21: time does not increase (time_s: "))
            << outcome.errors;
        EXPECT_FALSE(fs::exists(output()));
    }
}

TEST_F(ConverterEmiProgram, RefusesTooFewSamples) {
    writeTable(goodTable(15));
    expectRefusal(runOnTable(), table().string() + ": too few samples (15 where 16 are the least)");
}

TEST_F(ConverterEmiProgram, RefusesASamplingTooCoarseForTheBand) {
    writeTable(goodTable());
    expectRefusal(runOnTable("--stop 60e3"),
                  table().string() + ": too few samples (300 in 0.003 s, but 60000 Hz needs 360 or more)");
    expectRefusal(runOnTable("--samples 50"),
                  table().string() + ": too few samples (50 chosen, but 10000 Hz needs 60 or more)");
}

TEST_F(ConverterEmiProgram, RefusesARecordShorterThanAPeriod) {
    writeTable(goodTable(90));
    expectRefusal(runOnTable(),
                  table().string() + ": record is shorter than one switching period (0.00089 s at 1000 Hz)");
}

TEST_F(ConverterEmiProgram, RefusesARecordWithoutTimes) {
    auto lines = goodTable();
    writeTable(lines);
    expectRefusal(runOnTable("--time t"),
                  table().string()
                      + ": neither the time column nor a comment 'sample_interval_s' is there (no 't')");
}

TEST_F(ConverterEmiProgram, RefusesASampleIntervalThatIsNotPositive) {
    for (std::string const interval : {"0", "-1e-5"}) {
        auto lines = goodTable();
        lines.insert(lines.begin(), "# sample_interval_s," + interval);
        writeTable(lines);
        expectRefusal(runOnTable("--time t"), table().string()
                                                  + ": sample interval is not positive (sample_interval_s: '"
                                                  + interval + "')");
    }
}

TEST_F(ConverterEmiProgram, RefusesAStartFrequencyBelowNineKilohertz) {
    for (char const* start : {"8999.999", "0", "-1", "nan"}) {
        expectRefusal(runOnData(std::string("--start ") + start),
                      "Start frequency too small, value should be >= 9000 Hz");
    }
    EXPECT_EQ(runOnData("--start 9000").exitCode, 0);
}

TEST_F(ConverterEmiProgram, RefusesAStartFrequencyAboveTheStopFrequency) {
    expectRefusal(runOnData("--start 2e6 --stop 1e6"), "Start frequency larger than stop frequency");
}

TEST_F(ConverterEmiProgram, RefusesABandWithoutHarmonics) {
    std::string const data = CONVERTER_EMI_DATA;
    expectRefusal(runOnData("--start 150e3 --stop 390e3"),
                  data + ": no harmonic of the switching frequency lies in the band");
    expectRefusal(runOnData("--switching-frequency 1e300"),
                  data + ": no harmonic of the switching frequency lies in the band");
    expectRefusal(runOnData("--start 151e3 --stop 152e3 --switching-frequency 100e3"),
                  data + ": no harmonic of the switching frequency lies in the band");
}

TEST_F(ConverterEmiProgram, RefusesABandBeyondTheLimitLine) {
    std::string const data = CONVERTER_EMI_DATA;
    expectRefusal(runOnData("--stop 31e6"),
                  data
                      + ": band reaches beyond the limit line (150000 Hz to 3.1e+07 Hz; the "
                        "limit is defined from 150000 Hz to 3e+07 Hz)");
}

TEST_F(ConverterEmiProgram, RefusesALimitLineThatIsNotInOrder) {
    fs::path const limit = folder / "limit.csv";
    std::ofstream(limit) << "frequency_Hz,limit_dBuV\n1e5,50\n1e8,50\n1e7,40\n";
    expectRefusal(runOnData("--limit '" + limit.string() + "'"),
                  limit.string() + ":4: frequencies are not positive and in ascending order (10000000 Hz)");
    std::ofstream(limit) << "frequency_Hz,limit_dBuV\n0,50\n1e8,50\n";
    expectRefusal(runOnData("--limit '" + limit.string() + "'"),
                  limit.string() + ":2: frequencies are not positive and in ascending order (0 Hz)");
    std::ofstream(limit) << "frequency_Hz,limit_dBuV\n";
    expectRefusal(runOnData("--limit '" + limit.string() + "'"), limit.string() + ": file holds no table");
    fs::remove(limit);
    expectRefusal(runOnData("--limit '" + limit.string() + "'"), limit.string() + ": file cannot be read");
}

TEST_F(ConverterEmiProgram, RefusesACapacitorWithoutCurrent) {
    auto lines = goodTable();
    lines[0] += ",none_A";
    for (std::size_t i = 1; i < lines.size(); ++i) {
        lines[i] += ",0";
    }
    writeTable(lines);
    expectRefusal(
        runOnTable("--capacitor signal_V none_A"),
        table().string()
            + ": capacitor current has no part at a harmonic of the switching frequency (harmonic 1)");
}

TEST_F(ConverterEmiProgram, RefusesAnOutputFolderThatCannotBeMade) {
    std::ofstream(folder / "new") << "a file where the folder should be";
    Outcome const outcome = runOnData("");
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_TRUE(
        outcome.errors.starts_with("converter_emi: " + output().string() + ": file cannot be written ("))
        << outcome.errors;
}

TEST_F(ConverterEmiProgram, WithoutGnuplotNothingIsLeftBehind) {
    std::string const path = std::getenv("PATH");
    setenv("PATH", folder.c_str(), 1);
    Outcome const outcome =
        run(std::string("'") + CONVERTER_EMI_DATA + "' --output '" + output().string() + "'");
    setenv("PATH", path.c_str(), 1);
    expectRefusal(outcome, "gnuplot did not draw the plots (is it installed? --no-plots does without)");
}

TEST_F(ConverterEmiProgram, SkipsAByteOrderMark) {
    auto lines = goodTable();
    lines[0] = "\xEF\xBB\xBF" + lines[0];
    writeTable(lines);
    Outcome const outcome = runOnTable();
    EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
}

TEST_F(ConverterEmiProgram, ReadsTheRecordFromAPipe) {
    writeTable(goodTable());
    ASSERT_EQ(runOnTable().exitCode, 0);
    auto const expected = outputFiles();
    fs::remove_all(output());
    Outcome const outcome = run("/dev/stdin " + tableArguments(), "cat '" + table().string() + "' | ");
    ASSERT_EQ(outcome.exitCode, 0) << outcome.errors;
    EXPECT_TRUE(outputFiles() == expected);
}

TEST_F(ConverterEmiProgram, NamesTheLineOfAPipe) {
    auto lines = goodTable();
    lines[17] = "16e-5,abc";
    writeTable(lines);
    expectRefusal(run("/dev/stdin " + tableArguments(), "cat '" + table().string() + "' | "),
                  "/dev/stdin:18:2: field is not a finite number (signal_V: 'abc')");
}

TEST_F(ConverterEmiProgram, AReportThatCannotBeWrittenIsAFailure) {
    writeTable(goodTable());
    for (std::string const& arguments :
         {"'" + table().string() + "' " + tableArguments(), std::string("--help")}) {
        std::string const command = std::string("'") + CONVERTER_EMI_PROGRAM + "' " + arguments
                                    + " >/dev/full 2>'" + (folder / "stderr").string() + "'";
        int const status = std::system(command.c_str());
        EXPECT_EQ(WEXITSTATUS(status), 1) << arguments;
        EXPECT_TRUE(contentOf(folder / "stderr")
                        .starts_with("converter_emi: standard output: file cannot be written"))
            << contentOf(folder / "stderr");
    }
}

TEST_F(ConverterEmiProgram, WithoutPlotsNoOlderPlotsStayBesideNewTables) {
    fs::create_directories(output());
    std::vector<std::string> const older{"plots.gnuplot", "spectrum.svg", "spectrum.png",
                                         "waveform.svg",  "waveform.png", "capacitor.csv"};
    for (std::string const& name : older) {
        std::ofstream(output() / name) << "older";
    }
    ASSERT_EQ(runOnData("").exitCode, 0);
    for (std::string const& name : older) {
        EXPECT_FALSE(fs::exists(output() / name)) << name;
    }
    EXPECT_EQ(outputFiles().size(), 5U);
}

TEST_F(ConverterEmiProgram, RelativePathsCountFromTheCallersFolder) {
    writeTable(goodTable());
    Outcome const outcome =
        run("table.csv --no-plots --signal signal_V --switching-frequency 1e3 --start 9e3 "
            "--stop 10e3 --output results",
            "cd '" + folder.string() + "' && ");
    ASSERT_EQ(outcome.exitCode, 0) << outcome.errors;
    EXPECT_TRUE(fs::exists(folder / "results" / "summary.csv"));
}

TEST_F(ConverterEmiProgram, WhatAKilledRunLeftIsRemovedByTheNext) {
    // In the place of gnuplot: a program that kills the one that started it.
    fs::path const assassin = folder / "gnuplot";
    std::ofstream(assassin) << "#!/bin/sh\nkill -9 $PPID\n";
    fs::permissions(assassin, fs::perms::owner_all);
    Outcome const killed =
        run(std::string("'") + CONVERTER_EMI_DATA + "' --output '" + output().string() + "'",
            "PATH='" + folder.string() + "':\"$PATH\" ");
    EXPECT_NE(killed.exitCode, 0);
    auto const unfinished = [&] {
        return std::ranges::count_if(fs::directory_iterator(output()), [](auto const& entry) {
            return entry.path().filename().string().starts_with(".unfinished-");
        });
    };
    ASSERT_EQ(unfinished(), 1) << "the run was not killed in its middle";
    EXPECT_EQ(runOnData("").exitCode, 0);
    EXPECT_EQ(unfinished(), 0);
    EXPECT_EQ(outputFiles().size(), 5U);
}

TEST_F(ConverterEmiProgram, OnlyRecordsOfItsCircuitGetTheFiltersVerdict) {
    std::string record = contentOf(CONVERTER_EMI_DATA);
    std::string const comment = "# circuit,buck_converter.cir\n";
    auto const place = record.find(comment);
    ASSERT_NE(place, std::string::npos);
    writeTable(record.erase(place, comment.size()));
    Outcome const outcome = run("'" + table().string() + "' --no-plots --output '" + output().string() + "'");
    ASSERT_EQ(outcome.exitCode, 0) << outcome.errors;
    EXPECT_NE(outcome.output.find("without filter   FAIL"), std::string::npos) << outcome.output;
    EXPECT_NE(outcome.output.find("with filter      no verdict"), std::string::npos) << outcome.output;
    auto const files = outputFiles();
    EXPECT_TRUE(files.at("harmonics.csv")
                    .starts_with("order,frequency_Hz,amplitude_V,before_dBuV,limit_dBuV,margin_dB\n"));
    EXPECT_TRUE(files.at("spectrum.csv").starts_with("frequency_Hz,before_dBuV,limit_dBuV\n"));
    EXPECT_EQ(files.at("summary.csv").find("least_margin_after"), std::string::npos);
}

/// What the program writes to standard error when its record comes slowly.
class ConverterEmiProgress : public ConverterEmiProgram {
protected:
    std::string shellCommand() const {
        return "(sleep 2.5; cat '" + table().string() + "') | '" + CONVERTER_EMI_PROGRAM + "' /dev/stdin "
               + tableArguments() + " >/dev/null";
    }
};

TEST_F(ConverterEmiProgress, IsShownOnATerminalAfterTwoSeconds) {
    writeTable(goodTable());
    std::string const shown = shownOnTerminal(shellCommand());
    EXPECT_TRUE(shown.starts_with("\r\033[Kconverter_emi: reading the record ...")) << shown;
    EXPECT_TRUE(shown.ends_with("\r\033[K")) << "the line is cleared at the end: " << shown;
}

TEST_F(ConverterEmiProgress, IsNotShownInAFile) {
    writeTable(goodTable());
    std::string const command = shellCommand() + " 2>'" + (folder / "stderr").string() + "'";
    EXPECT_EQ(std::system(command.c_str()), 0);
    EXPECT_EQ(contentOf(folder / "stderr"), "");
}

TEST_F(ConverterEmiProgress, IsNotShownOfAShortRun) {
    writeTable(goodTable());
    EXPECT_EQ(shownOnTerminal(std::string("'") + CONVERTER_EMI_PROGRAM + "' '" + table().string() + "' "
                              + tableArguments() + " >/dev/null"),
              "");
}

} // namespace
