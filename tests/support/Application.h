#pragma once

#include "input/CTNParsedBlockPtrArray.h"
#include "template/CTNParserTemplate.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace bomparser::test {

/// A parser context of its own: results are stale or not as the test says, errors are collected.
class FakeContext final : public CTNParserContext {
 public:
  bool AreResultsStale() const override { return stale; }
  int GetTabStop() const override { return tabStop; }
  bool ReportError(std::string_view text, ErrorShown) override {
    errors.emplace_back(text);
    return true;
  }
  void OnTemplateModified() override { stale = true; }

  bool stale = false;
  int tabStop = 8;
  std::vector<std::string> errors;
};

/// A progress that records what it is told, and cancels before the step with this number (from 1);
/// 0 cancels at once, -1 never.
class FakeProgress final : public CTNProgress {
 public:
  struct Log {
    std::vector<std::string> texts;
    std::int32_t upper = -1;
    std::uint32_t steps = 0;
    std::int64_t cancelAtStep = -1;
    bool showsPosition = true;
  };
  explicit FakeProgress(Log& log) : m_log(log) {}
  void SetText(std::string_view text) override { m_log.texts.emplace_back(text); }
  bool ShowsPosition() const override { return m_log.showsPosition; }
  void SetRange(std::int32_t, std::int32_t upper, std::int32_t) override { m_log.upper = upper; }
  bool StepAndPoll(std::uint32_t steps) override {
    m_log.steps += steps;
    return IsCancelled();
  }
  bool IsCancelled() const override {
    return m_log.cancelAtStep >= 0 && std::int64_t{m_log.steps} >= m_log.cancelAtStep;
  }

 private:
  Log& m_log;
};

/// A front end whose progress windows share one log.
class FakeFrontEnd final : public CTNFrontEnd {
 public:
  std::unique_ptr<CTNProgress> BeginProgress(const std::string& caption) override {
    captions.push_back(caption);
    return std::make_unique<FakeProgress>(progress);
  }
  void ShowError(std::string_view text) override { errors.emplace_back(text); }

  std::vector<std::string> captions;
  std::vector<std::string> errors;
  FakeProgress::Log progress;
};

/// Applies a template to a text in memory, all lines translated.
struct Application {
  bool done = false;
  bool cancelled = false;
  std::string error;
  CTNParsedBlockPtrArray blocks{nullptr};

  /// Every block in its readable form, "E1{F1=R12|F2=}".
  std::vector<std::string> Readable() const;
};
Application ApplyToText(CTNParserTemplate& document, std::string_view text,
                        const ApplicationPurpose& purpose = {});
/// How a template is applied with more threads than one, also to a short text.
ApplicationPurpose WithThreads(ResultUse use = ResultUse::Kept);

/// The same with the plain matcher, block by block as the block loop is defined: the reference that
/// the compiled matcher is compared with.
std::vector<std::string> ApplyPlainly(CTNParserTemplate& document, std::string_view text);

/// The entity list of the blocks, from the compiled output program and from BuildEntityText.
std::string EntityListOf(const Application& application);
std::string EntityListPlainly(const Application& application);

}  // namespace bomparser::test
