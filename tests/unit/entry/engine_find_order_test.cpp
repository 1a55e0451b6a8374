// Find Template against the search in the folder's order that tries every template in full.

#include "input/MessageTexts.h"
#include "tests/support/EngineTest.h"
#include "tests/support/RandomMatch.h"
#include "tests/support/Repeat.h"
#include "tnbase/FolderListing.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace bomparser {
namespace {

using namespace test;
using Texts = std::vector<std::string>;

/// Keeps what the windows of a search say, and cancels in the window with this number (from 1).
class WatchingFrontEnd final : public CTNFrontEnd {
 public:
  std::unique_ptr<CTNProgress> BeginProgress(const std::string& caption) override {
    windows.push_back(caption);
    return std::make_unique<Window>(*this);
  }
  void ShowError(std::string_view text) override { errors.emplace_back(text); }

  Texts windows;  // Caption and texts of each.
  Texts errors;
  std::uint64_t rows = 0;
  std::size_t cancelIn = 0;

 private:
  class Window final : public CTNProgress {
   public:
    explicit Window(WatchingFrontEnd& owner) : m_owner(owner) {}
    void SetText(std::string_view text) override {
      m_owner.windows.back() += '|' + std::string(text);
    }
    bool ShowsPosition() const override { return true; }
    void SetRange(std::int32_t, std::int32_t upper, std::int32_t) override {
      m_owner.windows.back() += '|' + std::to_string(upper);
    }
    bool StepAndPoll(std::uint32_t steps) override {
      m_owner.rows += steps;
      m_stepped = true;
      return IsCancelled();
    }
    bool IsCancelled() const override {
      return m_stepped && m_owner.windows.size() == m_owner.cancelIn;
    }

   private:
    WatchingFrontEnd& m_owner;
    bool m_stepped = false;
  };
};

/// All that can be seen of a search.
struct Outcome {
  bool found = false;
  std::string error;
  bool cancelled = false;
  Texts windows;
  Texts errors;
  std::string path;
  std::string state;
  Texts blocks;
  Texts log;
  std::string list;
  std::string sideCopy;
};

class EngineFindOrderTest : public TestFolder {
 protected:
  static constexpr std::size_t kLineLength = 480;

  EngineFindOrderTest() {
    MakeFolder("search");
    WriteFile("start.xml", TemplateFor("x"));
  }

  /// A line that templates tell by its first character.
  static std::string Line(char word) { return word + std::string(kLineLength - 2, '.') + '\n'; }
  static std::string Lines(char word, std::size_t count) { return Repeat(Line(word), count); }

  /// Takes the lines that begin with one of the words ("a|b").
  static std::string Taking(std::string_view words, std::int32_t beginRow = 1,
                            std::int32_t endAfterRow = 0) {
    CTNParserTemplate document(nullptr);
    document.SetBeginRow(beginRow);
    document.SetEndAfterRow(endAfterRow);
    AddRecord(document, RecordKind::Part, "line", {String(words), Scan(), Newline()},
              {{OutputTag::RefDesignator, "F1"}, {OutputTag::PartNumber, "\"P\""}});
    return XmlText(document);
  }
  /// Takes two lines at once, and so fewer blocks than there are lines.
  static std::string TakingPairs(std::string_view words) {
    CTNParserTemplate document(nullptr);
    const FieldSpec word = String(words);
    AddRecord(document, RecordKind::MultipleMatch, "pair",
              {word, Scan(), Newline(), word, Scan(), Newline()});
    return XmlText(document);
  }
  /// Fails at the first line that begins with none of the words.
  static std::string FailingBehind(std::string_view words) {
    CTNParserTemplate document(nullptr);
    AddRecord(document, RecordKind::MultipleMatch, "line", {String(words), Scan(), Newline()});
    AddRecord(document, RecordKind::MultipleMatch, "takes nothing", {});
    return XmlText(document);
  }
  /// Loads with an entry in its log: the expression names a field that there is not.
  static std::string Complaining(std::string_view words) {
    std::string text = Taking(words);
    const std::size_t at = text.find("<VALUE>F1");
    return at == std::string::npos ? text : text.replace(at, 9, "<VALUE>F9");
  }

  /// Puts the templates into the folder, in the order in which the folder lists them.
  void Put(const Texts& contents) {
    const std::string folder = PathOf("search");
    for (const std::string& path : m_paths)
      std::filesystem::remove(path);
    m_paths.clear();
    for (std::size_t i = 0; i < contents.size(); ++i)
      WriteFile("search/t" + std::to_string(i) + ".xml", "");
    Texts names;
    std::string error;
    ASSERT_TRUE(ListFolder(folder, names, error)) << error;
    ASSERT_EQ(names.size(), contents.size());
    for (std::size_t i = 0; i < names.size(); ++i) {
      WriteFile("search/" + names[i], contents[i]);
      m_paths.push_back(folder + '/' + names[i]);
    }
  }
  void Input(const std::string& text) { WriteFile("input.txt", text); }

  /// Opens the input in a new engine and lets it search; `search` is given the engine and where
  /// error and cancelled flag go, and answers whether a template was found.
  template <class Search>
  Outcome Watch(Search search) {
    WatchingFrontEnd frontEnd;
    frontEnd.cancelIn = m_cancelIn;
    CTNFileParserEngine engine(&frontEnd);
    engine.SetSideCopy(m_sideCopy);
    engine.SetTemplateSearchPath(PathOf("search"));
    std::string error;
    EXPECT_TRUE(engine.OpenInputFile(PathOf("input.txt"), error)) << error;
    if (m_withStart) engine.LoadTemplate(PathOf("start.xml"));
    Outcome outcome;
    outcome.found = search(engine, outcome.error, outcome.cancelled);
    outcome.windows = frontEnd.windows;
    outcome.errors = frontEnd.errors;
    outcome.path = engine.GetTemplate()->GetFilePath();
    m_rows = frontEnd.rows;
    const ApplicationStats stats = engine.GetStats();
    const CTNParserInFile& input = *engine.GetInputFile();
    outcome.state = std::to_string(stats.totalBlocks) + ' ' + std::to_string(stats.ignoredBlocks) +
                    ' ' + std::to_string(stats.unmatchedBlocks) + ' ' +
                    std::to_string(stats.entityBlocks) + ' ' + std::to_string(stats.totalLines) +
                    (input.IsApplied() ? " applied" : "") + (input.IsStale() ? " stale" : "") +
                    (input.IsOutputDone() ? " done" : "") +
                    (engine.IsTemplateModified() ? " modified" : "");
    for (std::size_t i = 0; i < input.GetBlocks().GetSize(); ++i)
      outcome.blocks.push_back(input.GetBlocks().GetAt(i).ToReadableText());
    outcome.log = engine.GetTemplate()->GetErrorLog().GetAllLines();
    const auto add = [&outcome](std::string_view piece) {
      outcome.list += piece;
      return true;
    };
    EXPECT_TRUE(engine.WriteEntityList(add, error)) << error;
    std::string copy;
    EXPECT_TRUE(engine.GetSideCopyPath(copy, error)) << error;
    outcome.sideCopy = BytesAt(copy);
    return outcome;
  }

  Outcome Find() {
    return Watch([this](CTNFileParserEngine& engine, std::string& error, bool& cancelled) {
      return engine.FindTemplate(error, cancelled, m_show);
    });
  }

  /// The search as it is defined: one template after the other, each applied for good.
  Outcome FindPlainly() {
    return Watch([this](CTNFileParserEngine& engine, std::string& error, bool& cancelled) {
      return SearchPlainly(engine, error, cancelled);
    });
  }
  bool SearchPlainly(CTNFileParserEngine& engine, std::string& error, bool& cancelled) {
    const std::string startPath = engine.GetTemplate()->GetFilePath();
    double bestScore = 0.0;
    std::string bestPath;
    for (const std::string& path : m_paths) {
      if (!engine.LoadTemplate(path)) continue;
      if (!engine.ApplyTemplate(error, cancelled, m_show)) {
        if (error.empty()) error = FormatMessageText(Msg::UnspecifiedApplyErrorOfFile, path);
        break;
      }
      const double score = engine.GetStats().MatchPercent();
      if (score > bestScore) bestPath = path;
      bestScore = std::max(bestScore, score);
      if (score == 100.0) break;
    }
    std::string ignored;
    bool alsoIgnored = false;
    if (bestPath.empty() || cancelled) {
      if (error.empty()) error = GetMessageText(Msg::NoUseableTemplate);
      if (startPath != GetMessageText(Msg::UnsavedPath)) {
        engine.LoadTemplate(startPath);
      } else {
        engine.NewTemplate();
        engine.ApplyTemplate(ignored, alsoIgnored, ShowProgress::No);
      }
      return false;
    }
    engine.LoadTemplate(bestPath);
    engine.ApplyTemplate(ignored, alsoIgnored, ShowProgress::No);
    return true;
  }

  /// Both searches show the same, but for windows of templates that were tried once more.
  void ExpectTheSame(const std::string& trace) {
    SCOPED_TRACE(trace);
    const Outcome plain = FindPlainly();
    m_plainRows = m_rows;
    // Cancelling in a window that only one of them shows would end only that one.
    if (!plain.cancelled) m_cancelIn = 0;
    const Outcome found = Find();
    EXPECT_EQ(found.found, plain.found);
    EXPECT_EQ(found.error, plain.error);
    EXPECT_EQ(found.cancelled, plain.cancelled);
    EXPECT_EQ(found.path, plain.path);
    EXPECT_EQ(found.errors, plain.errors);
    EXPECT_EQ(found.log, plain.log);
    m_more = found.windows.size() - std::min(found.windows.size(), plain.windows.size());
    EXPECT_EQ(
        Texts(found.windows.begin(), found.windows.end() - static_cast<std::ptrdiff_t>(m_more)),
        plain.windows);
    // Without a side copy nobody looks at what a search that finds nothing leaves.
    if (m_sideCopy == SideCopy::Yes || plain.found) {
      EXPECT_EQ(found.state, plain.state);
      EXPECT_EQ(found.blocks, plain.blocks);
      EXPECT_EQ(found.list, plain.list);
    }
    EXPECT_EQ(found.sideCopy, plain.sideCopy);
  }

  Texts m_paths;
  bool m_withStart = true;
  SideCopy m_sideCopy = SideCopy::Yes;
  ShowProgress m_show = ShowProgress::Yes;
  std::size_t m_cancelIn = 0;
  std::uint64_t m_rows = 0;  // That the windows of the latest search were told of.
  std::uint64_t m_plainRows = 0;
  std::size_t m_more = 0;  // Windows that only the search itself showed.
};

constexpr std::size_t kManyLines = 1000;

TEST_F(EngineFindOrderTest, ABadTemplateIsGivenUpEarlyForOneThatStandsBehindIt) {
  Input(Lines('a', kManyLines));
  Put({Taking("x"), Taking("b"), Taking("c"), Taking("d"), Taking("a")});
  ExpectTheSame("the last one is perfect");
  EXPECT_EQ(m_plainRows, 5 * kManyLines);
  // The first and the last one read all lines.
  EXPECT_LT(m_rows, 3 * kManyLines);
  EXPECT_EQ(m_more, 0u);
}

TEST_F(EngineFindOrderTest, NothingBehindAPerfectTemplateIsTriedOrToldOf) {
  Input(Lines('a', kManyLines));
  Put({Taking("x"), Taking("b"), Taking("a"), "no template", FailingBehind("x"), Taking("a")});
  ExpectTheSame("perfect in the middle");
  EXPECT_EQ(m_more, 0u);
}

/// A text in which the sample promises something else than the whole.
class EngineFindPromiseTest : public EngineFindOrderTest {
 protected:
  /// Most lines begin with "a", but those in the middle of each eighth with "b".
  static std::string Deceiving() {
    return Repeat(Lines('a', 40) + Lines('c', 20) + Lines('b', 8) + Lines('c', 17) + Lines('a', 40),
                  8);
  }
  EngineFindPromiseTest() { Input(Deceiving()); }
};

TEST_F(EngineFindPromiseTest, APromiseThatIsNotKeptIsOnlyTriedOnceMore) {
  Put({Taking("x"), Taking("a"), Taking("b")});
  ExpectTheSame("the second one is the best");
  EXPECT_EQ(m_more, 1u);
}

TEST_F(EngineFindPromiseTest, OfTemplatesWithTheSameScoreTheFirstOneWinsAlsoWhenTriedOnceMore) {
  Put({Taking("x"), Taking("a"), Taking("a"), Taking("b"), Taking("a")});
  ExpectTheSame("four of the same score, one of them tried before");
  EXPECT_EQ(m_more, 2u) << "the second copy cannot be better than the first and is given up";
}

TEST_F(EngineFindPromiseTest, BehindAGoodTemplateNoneIsTriedTwice) {
  Put({Taking("a|c"), Taking("a"), Taking("b")});
  ExpectTheSame("the first one is the best");
  EXPECT_EQ(m_more, 0u);
}

TEST_F(EngineFindPromiseTest, AFailingTrialInFrontOfThePromisingOneEndsTheSearchInItsPlace) {
  Put({Taking("x"), Taking("a"), FailingBehind("a"), Taking("b")});
  ExpectTheSame("the best one before the failure stands");
  EXPECT_EQ(m_more, 1u);
}

TEST_F(EngineFindPromiseTest, TryingOnceMoreCanBeCancelled) {
  Put({Taking("x"), Taking("a"), Taking("b")});
  m_cancelIn = 4;
  const Outcome outcome = Find();
  EXPECT_FALSE(outcome.found);
  EXPECT_TRUE(outcome.cancelled);
  EXPECT_EQ(outcome.error, GetMessageText(Msg::OperationCancelled));
  EXPECT_EQ(outcome.path, PathOf("start.xml"));
  EXPECT_EQ(outcome.windows.size(), 4u);
}

TEST_F(EngineFindPromiseTest, WhereThePromiseComesToNothingTheLastTrialIsLeft) {
  // All lines are ignored, and then none is parseable.
  Put({Taking("x"), Taking("y"), Taking("b", 2000), Taking("z")});
  ExpectTheSame("nothing is found");
  EXPECT_EQ(m_more, 1u);
}

TEST_F(EngineFindOrderTest, ACancelledTrialLeavesTheResultsOfTheOneBefore) {
  Input(Lines('a', 4) + Lines('b', 4));
  Put({Taking("a"), Taking("b"), Taking("a|b")});
  for (m_cancelIn = 1; m_cancelIn <= 3; ++m_cancelIn)
    ExpectTheSame("cancelled in window " + std::to_string(m_cancelIn));
}

/// Random folders and texts: good, bad, equal, perfect and more than perfect templates, such as
/// fail, do not load, complain, take pairs of lines or leave lines out.
TEST_F(EngineFindOrderTest, RandomFoldersGiveWhatThePlainSearchGives) {
  constexpr std::uint32_t kRounds = 150;
  const Texts words{"a", "b", "a|b", "a|b|c", "b|c|d", "a|b|c|d", "a|b|c|d|e", "x"};
  std::size_t more = 0;
  std::size_t fewer = 0;
  for (std::uint32_t round = 0; round < kRounds; ++round) {
    SeededChooser choose(round);
    const auto anyWords = [&]() -> const std::string& {
      return words[choose.Below(static_cast<std::uint32_t>(words.size()))];
    };
    const auto anyTemplate = [&] {
      switch (choose.Below(14)) {
        case 0:
          return std::string(choose.OneIn(2) ? "no XML" : "<html/>");
        case 1:
          return FailingBehind(choose.OneIn(2) ? words[6] : anyWords());
        case 2:
          return Taking(anyWords(), 1 + static_cast<std::int32_t>(choose.Below(700)));
        case 3:
          return Taking(anyWords(), 1, static_cast<std::int32_t>(choose.Below(1500)) - 750);
        case 4:
        case 5:
          return TakingPairs(anyWords());
        case 6:
          return Complaining(anyWords());
        default:
          return Taking(anyWords());
      }
    };
    std::string text;
    const std::size_t lines = choose.OneIn(6) ? choose.Below(20) : 560 + choose.Below(200);
    const std::uint32_t letters = 2 + choose.Below(5);
    while (text.size() < lines * kLineLength) {
      const char word = static_cast<char>('a' + choose.Below(choose.OneIn(3) ? letters : 2));
      text += Lines(word, 1 + choose.Below(choose.OneIn(4) ? 100 : 3));
    }
    if (choose.OneIn(10)) text += "a";
    Input(text);
    Texts contents;
    for (std::uint32_t count = choose.Below(9); count > 0; --count)
      contents.push_back(anyTemplate());
    Put(contents);
    m_withStart = !choose.OneIn(3);
    m_sideCopy = choose.OneIn(3) ? SideCopy::No : SideCopy::Yes;
    m_show = choose.OneIn(4) ? ShowProgress::No : ShowProgress::Yes;
    m_cancelIn = choose.OneIn(4) ? 1 + choose.Below(8) : 0;
    ExpectTheSame("round " + std::to_string(round));
    if (HasFailure()) return;
    more += m_more;
    if (m_rows < m_plainRows) ++fewer;
  }
  EXPECT_GT(more, 0u) << "no promise was broken: these folders show too little";
  EXPECT_GT(fewer, std::size_t{kRounds / 8}) << "hardly any template was given up";
}

}  // namespace
}  // namespace bomparser
