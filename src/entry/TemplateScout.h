#pragma once

#include "input/ApplicationStats.h"
#include "input/CTNInputText.h"
#include "input/roles/CTNParserContext.h"
#include "template/CTNParserTemplate.h"

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace bomparser {

/// Looks at the templates of a search ahead of their turn: loads each, tries it on a few pieces of
/// the text, and keeps it for its trial. A search that knows what score is to come gives up bad
/// templates long before the good one has its turn.
///
/// Nobody sees it look: messages are swallowed, so a template that fails to load is left to be
/// loaded in its turn. A promise may be wrong; whoever counts on one looks again where it was.
class TemplateScout {
 public:
  /// A template with this score on the sample ends the looking ahead: few better ones will follow.
  static constexpr double kGoodScore = 90.0;

  /// The paths of the templates in the order of their turns; they outlive the scout.
  explicit TemplateScout(const std::vector<std::string>& paths);
  TemplateScout(const TemplateScout&) = delete;
  TemplateScout& operator=(const TemplateScout&) = delete;

  /// Looks from this place on, up to a template that promises a good score, or as far as memory
  /// may be spent. Places that were looked at before are not looked at again. Does nothing for a
  /// short text, where trials cost less than loading, and for one without a line end at its end,
  /// on which every application may fail.
  void LookAhead(std::size_t from, std::string_view text);

  /// A score that a template behind this place will probably reach; 0 when none is known.
  double GetPromiseBehind(std::size_t place) const { return m_seed > place ? m_promise : 0.0; }

  /// Hands out the template at this place; null when it is to be loaded in the usual way.
  std::unique_ptr<CTNParserTemplate> Take(std::size_t place);
  /// Loads the template at this place in silence; null when that fails or says something at once.
  std::unique_ptr<CTNParserTemplate> Load(std::size_t place);

 private:
  /// The engine of templates that nobody sees.
  class SilentContext final : public CTNParserContext {
   public:
    bool AreResultsStale() const override { return true; }
    int GetTabStop() const override { return 0; }
    bool ReportError(std::string_view, ErrorShown shown) override {
      toldAtOnce = toldAtOnce || shown == ErrorShown::AtOnce;
      return true;
    }
    void OnTemplateModified() override {}

    bool toldAtOnce = false;
  };

  void MakeSample(std::string_view text);
  bool Look(std::size_t place);
  ApplicationStats TryOnSample(CTNParserTemplate& document) const;

  const std::vector<std::string>& m_paths;
  std::vector<std::unique_ptr<CTNParserTemplate>> m_kept;  // By place.
  std::shared_ptr<const CTNInputText> m_sample;            // Null before the first look.
  std::size_t m_next = 0;                                  // No place behind was looked at.
  std::size_t m_seed = 0;                                  // The place that m_promise is about.
  double m_promise = 0.0;
  SilentContext m_context;
};

}  // namespace bomparser
