#include <getopt.h>
#include <gtest/gtest.h>

#include "platform/services.h"

namespace {

const SqloLongOption LONG_OPTIONS[] = {
    {"database", true, 'd'}, {"outfile", true, 'o'}, {"send", false, 's'},
    {"support", false, 'z'}, {"name", true, 'n'},    {nullptr, false, 0},
};

struct Parser {
  explicit Parser(std::vector<std::string> line) : words(std::move(line)) {
    for (std::string& word : words) {
      arguments.push_back(word.data());
    }
    arguments.push_back(nullptr);
  }

  int next() {
    return sqlogopt(static_cast<int>(words.size()), arguments.data(), "d:o:szn:", &state, LONG_OPTIONS);
  }

  /// One word an option: its letter and its argument.
  std::string all() {
    std::string text;
    for (int letter = next(); letter != -1; letter = next()) {
      text += std::string(text.empty() ? "" : " ") + static_cast<char>(letter);
      text += state.argument != nullptr ? "=" + std::string(state.argument) : "";
    }
    return text + (next() == -1 ? "" : " goes on");
  }

  std::vector<std::string> words;
  std::vector<char*> arguments;
  SqloOptionState state = {};
};

TEST(Options, AreReadAsTyped) {
  const std::string large(10000, 'x');
  const struct {
    std::vector<std::string> words;
    std::string expected;
  } rows[] = {
      {{}, ""},
      {{"mirel"}, ""},
      {{"mirel", "-z", "-d", "SAMPLE", "-oout"}, "z d=SAMPLE o=out"},
      {{"mirel", "-zsdSAMPLE", "-zd", "X"}, "z s d=SAMPLE z d=X"},
      {{"mirel", "--database", "A", "--outfile=B", "--support"}, "d=A o=B z"},
      {{"mirel", "--data", "A", "--su", "--out=B"}, "d=A z o=B"},
      {{"mirel", "--s", "-z"}, "?=--s z"},  // send or support
      {{"mirel", "one", "-z", "two", "-", "", "-d", "X", "three", "-s"}, "z d=X s"},
      {{"mirel", "-z", "--", "-s"}, "z"},
      {{"mirel", "-d", "--", "-o", "-z", "-n", ""}, "d=-- o=-z n="},
      {{"mirel", "-d", "--outfile", "--outfile=", "-n-"}, "d=--outfile o= n=-"},
      {{"mirel", "-x", "-zx", "-xz", "-z-s", "-:", "-W"}, "?=-x z ?=-x ?=-x z z ?=-- s ?=-: ?=-W"},
      {{"mirel", "-z\xC3\xA9s", "-\xC3", "-\xFFz"}, "z ?=-\xC3\xA9 s ?=-\xC3 ?=-\xFF z"},
      {{"mirel", "--bogus", "--bogus=5", "--support=1", "---", "--=x"},
       "?=--bogus ?=--bogus=5 ?=--support=1 ?=--- ?=--=x"},
      {{"mirel", "-z", "-d"}, "z ?=-d"},
      {{"mirel", "-zd"}, "z ?=-d"},
      {{"mirel", "--outfile"}, "?=--outfile"},
      {{"mirel", "-d", large, "--name=" + large}, "d=" + large + " n=" + large},
      {{"mirel", "--x" + large, "-z"}, "?=--x" + std::string(252, 'x') + " z"},
  };
  for (const auto& row : rows) {
    Parser parser(row.words);
    EXPECT_EQ(row.expected, parser.all()) << testing::PrintToString(row.words);
  }
}

// Either would take minutes if the work grew with the square of the input.
TEST(Options, ManyAndLongOnesAreLinear) {
  EXPECT_EQ(199999U, Parser(std::vector<std::string>(100001, "-z")).all().size());
  EXPECT_EQ(2000003U, Parser({"mirel", "-" + std::string(1000000, 'z') + "dX"}).all().size());
}

// Whoever else uses getopt(3), option by option in turns even, does not notice; nor does it matter to us
// where in a group of options they stopped.
TEST(Options, ShareNothingWithOtherUsersOfGetopt) {
  Parser other({"other", "-a", "-b", "value", "-c"});
  Parser parser({"mirel", "-zs", "-q", "-dX"});
  std::string seen;
  std::ignore = getopt(2, Parser({"stopped", "-ab"}).arguments.data(), "ab");
  EXPECT_EQ('z', parser.next());
  optind = 1, opterr = 0;
  for (int letter = 0; letter != -1;) {
    letter = getopt(5, other.arguments.data(), "ab:c");
    seen += letter == -1 ? "." : static_cast<char>(letter) + std::string(optarg != nullptr ? optarg : "");
    const auto before = std::tuple(optind, opterr, optopt, optarg);
    seen += static_cast<char>(parser.next());
    EXPECT_EQ(before, std::tuple(optind, opterr, optopt, optarg));
  }
  EXPECT_EQ("asbvalue?cd.\xFF", seen);
}

}  // namespace
