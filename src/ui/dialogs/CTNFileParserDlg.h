#pragma once

#include "entry/CTNFileParserEngine.h"
#include "input/roles/CTNFrontEnd.h"
#include "ui/controls/CTNDlg.h"
#include "ui/controls/CTNUserDialogs.h"
#include "ui/dialogs/RecentFiles.h"
#include "ui/views/CTNTemplRecordListCtrl.h"

#include <QString>
#include <QTimer>
#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

class QLineEdit;
class QPushButton;
class QSplitter;
class QToolButton;

namespace bomparser {

class CTNInFilePropPage;
class CTNInFilePropSheet;
class CTNParserInFileListCtrl;
class CTNTemplRecFieldListCtrl;
class CTNTemplRecInField;
class CTNTemplRecOutField;
class CTNTemplRecOutFieldListCtrl;
class CTNTemplRecPropSheet;
class CTNTemplateListCtrl;
class CTNTransSummaryPropPage;
enum class Msg : std::uint32_t;

/// The main dialog: one window over one engine, in which a template is made and edited while it is
/// applied to an input file. It owns the engine and all views. Views tell, the dialog has done what
/// they ask for; every button is one workflow.
///
/// Exit alone ends it in order: it asks, closes, and stores the settings. Escape and the close box
/// ask nothing and store none of them.
class CTNFileParserDlg final : public CTNDlg, private CTNFrontEnd {
  Q_OBJECT

 public:
  using EngineMaker = std::function<std::unique_ptr<CTNFileParserEngine>(CTNFrontEnd*)>;

  /// The host is not owned and lives longer.
  explicit CTNFileParserDlg(CTNHostApp& host, QWidget* parent = nullptr);
  CTNFileParserDlg(CTNHostApp& host, const EngineMaker& makeEngine, QWidget* parent = nullptr);
  ~CTNFileParserDlg() override;

  /// The caption of the window and of every message box. Before it opens, as the next one.
  void SetTitle(const std::string& title);
  /// The section of all settings.
  void SetProfileSection(const std::string& section) { m_section = section; }

  /// Makes the views and reads the settings. False, told of in a box, when there is no engine.
  bool Initialise();
  /// Initialises, and runs the dialog until the user ends it: Accepted by Exit, else Rejected.
  int exec() override;
  /// Ends the dialog without asking or storing anything, unless a workflow is under way.
  void reject() override;

  CTNFileParserEngine& GetEngine() { return *m_engine; }

 protected:
  void showEvent(QShowEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dropEvent(QDropEvent* event) override;

 private:
  using Workflow = void (CTNFileParserDlg::*)();
  struct Button;

  // Making the window.
  void BuildControls();
  QWidget* BuildTemplateGroup();
  QWidget* BuildInputGroup();
  QWidget* BuildLists();
  QWidget* BuildBottomRow();
  QPushButton* MakeButton(const Button& button);
  QToolButton* MakeRecentButton(Ctrl number, Msg text, const RecentFiles& files,
                                std::function<void(const std::string&)> open);
  void BuildViews();
  void WireViews();
  void Wire(CTNTemplateListCtrl& list, void (CTNFileParserDlg::*doCommand)(Cmd));
  void WireRecordList(RecordPage page);
  void WireInputViews();
  std::array<CTNTemplateListCtrl*, 4> TemplateLists() const;
  void LoadSettings();
  bool StoreSettings();
  void RestoreWindow();
  bool StoreWindow();
  void OpenWhatTheHostNames();

  // Workflows: CTNFileParserDlg.cpp, …Template.cpp, …Input.cpp.
  void OnHelp();
  void OnSettings();
  void OnExit();
  void OnLoadFromFile();
  void OnCreateNew();
  void OnSaveToFile() { SaveTemplate(); }
  void OnEditParams();
  void OnOpen();
  void OnClose();
  void OnFindTemplate();
  void OnApplyTemplate();
  void OnOutput() { OutputEntityList(); }
  void OnEditFile();

  // Their parts. A part that answers false was cancelled or has failed: the workflow stops there.
  bool MayDropTemplate();
  void ResetTemplate();
  void LoadTemplate(const std::string& path);
  bool SaveTemplate();
  bool ChooseTemplateTarget(std::string& path);
  BoxAnswer MayOverwrite(const std::string& path);
  void ShowFound(const std::string& error);
  bool AskOutputFirst();
  bool MayLeaveInput();
  void OpenInput(const std::string& path);
  void CloseInput();
  bool ApplyTemplate();
  bool MayOutput();
  bool OutputEntityList();
  bool WriteEntityList(const std::string& path);
  bool MayOpen(const std::string& path) const;
  void OpenDropped(const std::string& path);

  // Commands of the views: CTNFileParserDlgEdit.cpp.
  void DoRecordCommand(Cmd command);
  void DoFieldCommand(Cmd command);
  void DoElementCommand(Cmd command);
  void AddNewRecord(const CTNTemplateRecord* before);
  void DeleteRecords();
  void CopyRecords();
  void MoveRecords(RecordPage page, const CTNTemplateRecord* before);
  void AddNewField(const CTNTemplRecInField* before);
  void DeleteFields();
  bool DeleteSingly(CTNTemplateRecord& record,
                    const std::vector<const CTNTemplRecInField*>& fields);
  void MoveFields(const CTNTemplRecInField* before);
  void AddNewElement(const CTNTemplRecOutField* before);
  void DeleteElements();
  void MoveElements(const CTNTemplRecOutField* before);
  template <class Field>
  std::vector<Field*> CopyFields(const std::vector<Field*>& fields,
                                 const std::vector<CTNTemplateRecord*>& targets, EditKind editKind);
  CTNTemplateRecord* OneSelectedRecord(Msg otherwise);
  std::vector<CTNTemplateRecord*> AllOtherRecords() const;
  void FinishAdding(CTNTemplateRecord* record, bool made);
  void FinishEdit(std::uint32_t editKinds);
  static void SelectAfterDeleting(CTNTemplateListCtrl& list, int row);
  template <class Element>
  static void SelectElements(CTNTemplateListCtrl& list, const std::vector<Element*>& elements);
  void CreateRecordFromSelected();
  void TestSelected();

  // What is shown.
  RecordPage VisiblePage() const;
  CTNTemplRecordListCtrl& RecordList(RecordPage page) const;
  RecordLink& CurrentRecord(RecordPage page);
  void ShowEverything();
  void ShowPaths();
  void ShowRows();
  void ShowHint();
  void ShowRecord();
  void SetCurrentValues(CTNTemplateRecord& record);
  void SelectFirstRecord();
  void SelectFirstIfNone();
  void OnRecordSelected(RecordPage page, CTNTemplateRecord* record);
  void SelectRecordOf(const CTNParsedFileBlock& block);
  void EnableInputButtons(bool enable);
  void UpdateInputButtons();

  BoxAnswer Ask(BoxIcon icon, const QString& text, BoxButtons buttons, const QString& reason = {});
  BoxAnswer AskQuestion(Msg question);
  /// Asks whether something is to be done before what the user has begun. False when it was wanted
  /// and not done, or when the user would rather stop.
  bool MayGoOn(Msg question, bool (CTNFileParserDlg::*doFirst)());
  void ShowFailure(const QString& text, const QString& reason = {});
  /// Runs one command of the user. Nothing else begins meanwhile, and an open editor ends first, as
  /// it does when the focus leaves it.
  void Run(const std::function<void()>& work);
  void WriteOwedSideCopy();

  std::unique_ptr<CTNProgress> BeginProgress(const std::string& caption) override;
  void ShowError(std::string_view text) override;

  std::unique_ptr<CTNFileParserEngine> m_engine;
  QString m_title;
  std::string m_section;
  std::string m_templateFolder;
  std::string m_inputFolder;
  std::string m_outputPath;
  RecentFiles m_recentTemplates;
  RecentFiles m_recentInputs;

  // All of them are parts of the window.
  CTNTemplRecPropSheet* m_recordSheet = nullptr;
  CTNTemplRecFieldListCtrl* m_fields = nullptr;
  CTNTemplRecOutFieldListCtrl* m_elements = nullptr;
  CTNInFilePropPage* m_inputPage = nullptr;
  CTNTransSummaryPropPage* m_resultsPage = nullptr;
  CTNInFilePropSheet* m_inputSheet = nullptr;
  QLineEdit* m_templateFile = nullptr;
  QLineEdit* m_templateTitle = nullptr;
  QLineEdit* m_inputFile = nullptr;
  QPushButton* m_open = nullptr;
  QToolButton* m_recentInputsButton = nullptr;
  std::vector<QPushButton*> m_inputButtons;  // Those that need an input file.
  QSplitter* m_sides = nullptr;
  QSplitter* m_lists = nullptr;

  std::array<RecordLink, 2> m_current;  // The record selected last on each page.
  std::shared_ptr<const CTNParsedResult> m_shownResult;
  bool m_inputButtonsOn = false;  // As they are while the results page is not shown.
  bool m_working = false;         // A workflow or command is under way.
  bool m_shownBefore = false;
  QTimer m_idle;
};

}  // namespace bomparser
