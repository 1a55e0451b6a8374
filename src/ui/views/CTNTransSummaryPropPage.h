#pragma once

#include "ui/controls/CTNPropPage.h"

#include <functional>
#include <string>
#include <vector>

class QGridLayout;
class QLineEdit;
class QTabWidget;

namespace bomparser {

class CTNFileParserEngine;
class CTNWebBrowser2;
struct ApplicationStats;

/// The results of the latest application of the template: its counts, and the entity list.
class CTNTransSummaryPropPage final : public CTNPropPage {
  Q_OBJECT

 public:
  /// Makes the viewer of the entity list as a child of the parent; null when it cannot.
  using ViewerMaker = std::function<CTNWebBrowser2*(QWidget* parent)>;

  /// The engine may be null or not valid. It is not owned and outlives the page.
  explicit CTNTransSummaryPropPage(CTNFileParserEngine* engine, QWidget* parent = nullptr);
  CTNTransSummaryPropPage(CTNFileParserEngine* engine, ViewerMaker makeViewer,
                          QWidget* parent = nullptr);

  /// Shows the results as they are now. To be called after everything that may have changed them
  /// while the page is active. Without results nothing is shown but the counts of earlier ones;
  /// where these are no longer those of the template, the counts are zero and the entity list is
  /// deleted.
  void Refresh();

 protected:
  void OnInitDialog() override;
  void OnSetActive() override { Refresh(); }

 private:
  void AddCounters(QGridLayout& layout);
  void ShowCounters(const ApplicationStats& stats);
  void ShowEntityList();
  void DeleteEntityList();
  void ReportFileError(const std::string& error);

  CTNFileParserEngine* m_engine;
  ViewerMaker m_makeViewer;
  std::vector<QLineEdit*> m_counters;  // As in the table of counters.
  // The viewer is its first view. With one view alone there is nothing to choose and no tab is
  // seen.
  QTabWidget* m_views;
  CTNWebBrowser2* m_viewer = nullptr;  // Null until the page was opened, or when none can be made.
};

}  // namespace bomparser
