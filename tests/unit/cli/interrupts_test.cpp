#include "tnbase/Interrupts.h"

#include "cli/OutputFile.h"
#include "cli/Session.h"
#include "cli/TerminalFrontEnd.h"
#include "tests/support/TestFolder.h"

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>

namespace bomparser {
namespace {

using testing::ExitedWithCode;

// Each body runs in a process of its own, which ends with the status that is expected.

/// Ends the process with 1 when the condition does not hold.
void Demand(bool condition) {
  if (!condition) std::_Exit(1);
}

TEST(InterruptsDeathTest, WithoutAHoldTheProcessEndsAtOnce) {
  const auto interrupted = [](int signal) {
    CatchInterrupts();
    std::raise(signal);
    std::_Exit(0);
  };
  EXPECT_EXIT(interrupted(SIGINT), ExitedWithCode(130), "");
  EXPECT_EXIT(interrupted(SIGTERM), ExitedWithCode(143), "");
}

TEST(InterruptsDeathTest, AHoldRemembersThem) {
  const auto held = [] {
    CatchInterrupts();
    {
      const InterruptHold outer;
      const InterruptHold inner;
      Demand(!IsInterrupted());
      std::raise(SIGINT);
      Demand(IsInterrupted());
    }
    std::_Exit(InterruptStatus());
  };
  EXPECT_EXIT(held(), ExitedWithCode(130), "");
}

TEST(InterruptsDeathTest, BehindTheLastHoldTheProcessEndsAtOnceAgain) {
  const auto afterwards = [] {
    CatchInterrupts();
    { const InterruptHold hold; }
    std::raise(SIGINT);
    std::_Exit(0);
  };
  EXPECT_EXIT(afterwards(), ExitedWithCode(130), "");
}

TEST(InterruptsDeathTest, AnApplicationUnderWayIsCancelledAtTheNextBlock) {
  const auto application = [] {
    CatchInterrupts();
    TerminalFrontEnd frontEnd(SideCopy::No);
    const auto progress = frontEnd.BeginProgress("Work: ");
    Demand(!progress->StepAndPoll(1));
    std::raise(SIGINT);
    Demand(progress->StepAndPoll(1) && progress->IsCancelled());
    std::_Exit(InterruptStatus());
  };
  EXPECT_EXIT(application(), ExitedWithCode(130), "");
}

TEST(InterruptsDeathTest, BeforeTheFirstBlockAndAfterTheLastNothingIsHeld) {
  const auto reading = [] {
    CatchInterrupts();
    TerminalFrontEnd frontEnd(SideCopy::No);
    const auto progress = frontEnd.BeginProgress("Work: ");
    std::raise(SIGINT);
    std::_Exit(0);
  };
  EXPECT_EXIT(reading(), ExitedWithCode(130), "");
  const auto afterwards = [] {
    CatchInterrupts();
    TerminalFrontEnd frontEnd(SideCopy::No);
    frontEnd.BeginProgress("Work: ")->StepAndPoll(1);
    std::raise(SIGINT);
    std::_Exit(0);
  };
  EXPECT_EXIT(afterwards(), ExitedWithCode(130), "");
}

TEST(InterruptsDeathTest, ASideCopyIsNotLeftBehind) {
  const auto afterwards = [] {
    CatchInterrupts();
    TerminalFrontEnd frontEnd(SideCopy::Yes);
    frontEnd.BeginProgress("Work: ");
    std::raise(SIGINT);
    std::_Exit(IsInterrupted() ? InterruptStatus() : 1);
  };
  EXPECT_EXIT(afterwards(), ExitedWithCode(130), "");
}

class SideCopyDeathTest : public TestFolder {};

TEST_F(SideCopyDeathTest, AnInterruptionIsNotKeptWaitingByTheSideCopy) {
  WriteFile("template.xml",
            "<PARSER_TEMPLATE><TEMPLATE_RECORD><TYPE>Part</TYPE></TEMPLATE_RECORD>"
            "</PARSER_TEMPLATE>");
  WriteFile("input.txt", "a\n");
  const auto copying = [this](bool interrupted) {
    CatchInterrupts();
    bool written = false;
    {
      Session session(SideCopy::Yes);
      CTNFileParserEngine& engine = session.GetEngine();
      std::string path;
      std::string error;
      bool cancelled = false;
      Demand(engine.LoadTemplate(PathOf("template.xml")) &&
             engine.OpenInputFile(PathOf("input.txt"), error) &&
             engine.GetSideCopyPath(path, error) &&
             engine.ApplyTemplate(error, cancelled, ShowProgress::Yes));
      if (interrupted) std::raise(SIGINT);
      session.WriteSideCopy();
      written = std::filesystem::exists(path);
    }
    std::_Exit(written ? 0 : InterruptStatus());
  };
  EXPECT_EXIT(copying(false), ExitedWithCode(0), "");
  EXPECT_EXIT(copying(true), ExitedWithCode(130), "");
}

class OutputFileDeathTest : public TestFolder {};

TEST_F(OutputFileDeathTest, AnInterruptedFileIsNotWritten) {
  WriteFile("list", "as before");
  const auto interrupted = [this] {
    CatchInterrupts();
    {
      std::string error;
      OutputFile file;
      Demand(file.Open(PathOf("list"), error) && file.Write("some", error));
      std::raise(SIGINT);
      Demand(!file.Write("more", error) && !file.Commit(error));
    }
    std::_Exit(InterruptStatus());
  };
  EXPECT_EXIT(interrupted(), ExitedWithCode(130), "");
  EXPECT_EQ(BytesOf("list"), "as before");
  EXPECT_EQ(Names(), std::vector<std::string>{"list"});
}

}  // namespace
}  // namespace bomparser
