#include "ui/controls/WindowProgress.h"

#include "entry/CTNFileParserEngine.h"
#include "tests/support/EngineTest.h"
#include "tests/ui/support/UiTest.h"

#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QThread>
#include <QTimer>
#include <QWindow>
#include <chrono>
#include <functional>
#include <memory>
#include <string>

namespace bomparser::test {
namespace {

std::string TextOf(const CProgressWnd& window) {
  return FindControl<QLabel>(window, Ctrl::ProgressText)->text().toStdString();
}

/// A front end with real progress windows over a real parent, which breathe at every block.
class WindowFrontEnd final : public CTNFrontEnd {
 public:
  WindowFrontEnd(CTNHostApp& host, QWidget& parent) : m_host(host), m_parent(parent) {}
  std::unique_ptr<CTNProgress> BeginProgress(const std::string& caption) override {
    ++begun;
    if (begins) return begins(caption);
    auto progress =
        std::make_unique<WindowProgress>(m_host, &m_parent, caption, std::chrono::milliseconds(0));
    if (whenShown) whenShown(*m_parent.findChild<CProgressWnd*>());
    return progress;
  }
  void ShowError(std::string_view) override {}

  int begun = 0;
  std::function<void(CProgressWnd&)> whenShown;
  std::function<std::unique_ptr<CTNProgress>(const std::string&)> begins;  // Instead, if set.

 private:
  CTNHostApp& m_host;
  QWidget& m_parent;
};

class WindowProgressTest : public TestFolder {
 protected:
  WindowProgressTest() {
    parent.resize(600, 400);
    parent.show();
    parent.activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&parent));
    WriteFile("parts.xml", TemplateFor("R1"));
    WriteFile("others.xml", TemplateFor("C1"));
    WriteFile("input.txt", "R1\n");
    EXPECT_TRUE(engine.LoadTemplate(PathOf("parts.xml")));
    EXPECT_TRUE(engine.OpenInputFile(PathOf("input.txt"), error));
  }
  void WriteLongInput() {
    constexpr int kPairsOfLines = 500;
    std::string text;
    for (int pair = 0; pair < kPairsOfLines; ++pair)
      text += "R1\nC1\n";
    WriteFile("input.txt", text);
  }
  bool Apply() { return engine.ApplyTemplate(error, cancelled, ShowProgress::Yes); }
  std::string Results() {
    std::string list;
    std::string ignored;
    engine.WriteEntityList(
        [&list](std::string_view piece) {
          list += piece;
          return true;
        },
        ignored);
    return list + (engine.GetInputFile()->IsApplied() ? " applied" : "") +
           (engine.GetInputFile()->IsStale() ? " stale" : "");
  }
  /// From now on `user` gets every window half-way through its application, as its events are
  /// pumped.
  void WhenHalfDone(const std::function<void(CProgressWnd&)>& user) {
    frontEnd.whenShown = [user](CProgressWnd& window) {
      const auto* bar = window.findChild<QProgressBar*>();
      QObject::connect(bar, &QProgressBar::valueChanged, &window, [&window, bar, user](int value) {
        if (value == bar->maximum() / 2) QTimer::singleShot(0, &window, [&] { user(window); });
      });
    };
  }
  /// Applies once, and then to a longer text, which is cancelled in the middle.
  void ExpectCancelledBy(const std::function<void(CProgressWnd&)>& cancel) {
    ASSERT_TRUE(Apply()) << error;
    const std::string before = Results();
    WriteLongInput();
    WhenHalfDone(cancel);
    EXPECT_FALSE(Apply());
    EXPECT_TRUE(cancelled);
    EXPECT_EQ(error, "Operation cancelled");
    EXPECT_EQ(Results(), before);
    EXPECT_TRUE(parent.isEnabled());
    EXPECT_EQ(parent.findChild<CProgressWnd*>(), nullptr);
  }

  FakeHostApp host;
  QWidget parent;
  WindowFrontEnd frontEnd{host, parent};
  CTNFileParserEngine engine{&frontEnd};
  std::string error;
  bool cancelled = false;
};

TEST_F(WindowProgressTest, AnApplicationShowsOneWindowAndEndsIt) {
  EXPECT_TRUE(Apply()) << error;
  EXPECT_EQ(frontEnd.begun, 1);
  EXPECT_TRUE(parent.isEnabled());
  EXPECT_EQ(parent.findChild<CProgressWnd*>(), nullptr);
  EXPECT_FALSE(engine.GetInputFile()->IsStale());
}

TEST_F(WindowProgressTest, IsShownAtOnceOverTheDisabledParent) {
  const WindowProgress progress(host, &parent, "Scanning input.txt -- Progress: ");
  auto* window = parent.findChild<CProgressWnd*>();
  ASSERT_NE(window, nullptr);
  EXPECT_TRUE(window->isVisible());
  EXPECT_FALSE(parent.isEnabled());
  EXPECT_EQ(window->windowTitle(), "Scanning input.txt -- Progress: ");
  EXPECT_TRUE(progress.ShowsPosition());
}

TEST_F(WindowProgressTest, TellsWhatIsDoneInTitleAndText) {
  WriteLongInput();
  std::string preparing;
  std::string applying;
  std::string title;
  WhenHalfDone([&](CProgressWnd& window) {
    applying = TextOf(window);
    title = window.windowTitle().toStdString();
  });
  frontEnd.whenShown = [&, whenHalfDone = frontEnd.whenShown](CProgressWnd& window) {
    whenHalfDone(window);
    QTimer::singleShot(0, &window, [&] { preparing = TextOf(window); });
  };
  EXPECT_TRUE(Apply()) << error;
  EXPECT_EQ(preparing, "Preparing for Template Application ...");
  EXPECT_EQ(applying, "Applying Template File parts.xml...");
  EXPECT_EQ(title, "Scanning input.txt -- Progress:  [50%]");
}

TEST_F(WindowProgressTest, ACancelIsSeenAtTheNextStepHoweverSeldomTheBarMoves) {
  WindowProgress progress(host, &parent, "Scanning", std::chrono::hours(1));
  auto& window = *parent.findChild<CProgressWnd*>();
  constexpr int kSteps = 1000;
  progress.SetRange(0, kSteps, 1);
  for (int step = 0; step < kSteps; ++step)
    EXPECT_FALSE(progress.StepAndPoll(1));
  EXPECT_EQ(window.findChild<QProgressBar*>()->value(), 0);
  window.Cancel();
  EXPECT_TRUE(progress.StepAndPoll(1));
  EXPECT_TRUE(progress.IsCancelled());
}

TEST_F(WindowProgressTest, TheBarHasMovedByTheSixteenthStepAtTheLatest) {
  constexpr std::chrono::milliseconds kBreath{5};
  WindowProgress progress(host, &parent, "Scanning", kBreath);
  progress.SetRange(0, 100, 1);
  const auto* bar = parent.findChild<QProgressBar*>();
  for (int round = 1; round <= 3; ++round) {
    QThread::msleep(2 * kBreath.count());
    for (int step = 0; step < 16; ++step)
      EXPECT_FALSE(progress.StepAndPoll(1));
    EXPECT_GT(bar->value(), (round - 1) * 16);
  }
}

TEST_F(WindowProgressTest, AStepMayStandForSeveralPieces) {
  WindowProgress progress(host, &parent, "Scanning", std::chrono::milliseconds(0));
  progress.SetRange(0, 100, 10);
  progress.StepAndPoll(3);
  progress.StepAndPoll(2);
  EXPECT_EQ(parent.findChild<CProgressWnd*>()->windowTitle(), "Scanning [50%]");
}

TEST_F(WindowProgressTest, ItsButtonCancelsAnApplicationAndLeavesTheResults) {
  ExpectCancelledBy([](CProgressWnd& window) {
    QTest::mouseClick(FindControl<QPushButton>(window, Ctrl::Cancel), Qt::LeftButton);
  });
}

TEST_F(WindowProgressTest, EscapeCancelsAnApplicationAndLeavesTheResults) {
  ExpectCancelledBy([](CProgressWnd& window) { QTest::keyClick(&window, Qt::Key_Escape); });
}

TEST_F(WindowProgressTest, ItsCloseBoxCancelsAnApplicationAndLeavesTheResults) {
  ExpectCancelledBy([](CProgressWnd& window) { window.windowHandle()->close(); });
}

TEST_F(WindowProgressTest, AParentThatGoesMeanwhileCancelsTheApplication) {
  auto* const brief = new QWidget;
  brief->show();
  WindowFrontEnd briefFrontEnd(host, *brief);
  frontEnd.begins = [&](const std::string& caption) {
    return briefFrontEnd.BeginProgress(caption);
  };
  WriteLongInput();
  briefFrontEnd.whenShown = [brief](CProgressWnd&) {
    QTimer::singleShot(0, qApp, [brief] { delete brief; });
  };
  EXPECT_FALSE(Apply());
  EXPECT_TRUE(cancelled);
  EXPECT_EQ(error, "Operation cancelled");
}

TEST_F(WindowProgressTest, StaleResultsStayStaleResultsAfterACancel) {
  ASSERT_TRUE(Apply()) << error;
  ASSERT_TRUE(engine.LoadTemplate(PathOf("others.xml")));
  const std::string before = Results();
  EXPECT_TRUE(before.ends_with(" applied stale")) << before;
  WriteLongInput();
  WhenHalfDone([](CProgressWnd& window) { window.close(); });
  EXPECT_FALSE(Apply());
  EXPECT_TRUE(cancelled);
  EXPECT_EQ(Results(), before);
}

TEST_F(WindowProgressTest, CancelsBeforeTheFirstLineToo) {
  ASSERT_TRUE(Apply()) << error;
  const std::string before = Results();
  WriteFile("input.txt", "R1\nR1\n");
  frontEnd.whenShown = [](CProgressWnd& window) {
    QTimer::singleShot(0, &window, [&window] { window.close(); });
  };
  EXPECT_FALSE(Apply());
  EXPECT_EQ(error, "Operation cancelled");
  EXPECT_EQ(Results(), before);
}

TEST_F(WindowProgressTest, ACancelledApplicationCanBeRepeated) {
  ExpectCancelledBy([](CProgressWnd& window) { window.close(); });
  frontEnd.whenShown = nullptr;
  EXPECT_TRUE(Apply()) << error;
  EXPECT_FALSE(cancelled);
  EXPECT_TRUE(Results().ends_with(" applied"));
}

TEST_F(WindowProgressTest, ASearchForATemplateIsCancelledAsAWhole) {
  WriteLongInput();
  MakeFolder("library");
  WriteFile("library/a.xml", TemplateFor("X1"));
  WriteFile("library/b.xml", TemplateFor("R1"));
  engine.SetTemplateSearchPath(PathOf("library"));
  WhenHalfDone([](CProgressWnd& window) { window.close(); });
  EXPECT_FALSE(engine.FindTemplate(error, cancelled, ShowProgress::Yes));
  EXPECT_TRUE(cancelled);
  EXPECT_EQ(error, "Operation cancelled");
  EXPECT_TRUE(parent.isEnabled());
}

TEST_F(WindowProgressTest, CaptionsThatAreNoUtf8AreShown) {
  const WindowProgress progress(host, &parent,
                                "Scanning m\xFC"
                                "ll.txt");
  EXPECT_EQ(parent.findChild<CProgressWnd*>()->windowTitle(),
            QString::fromUtf8("Scanning müll.txt"));
}

TEST_F(WindowProgressTest, PictureOfAnApplicationUnderWay) {
  WriteLongInput();
  bool taken = false;
  WhenHalfDone(
      [&taken](CProgressWnd& window) { taken = Screenshot(window, "progress-under-way"); });
  EXPECT_TRUE(Apply()) << error;
  EXPECT_TRUE(taken);
}

}  // namespace
}  // namespace bomparser::test
