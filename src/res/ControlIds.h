#pragma once

namespace bomparser {

/// Every control by number. Context help, settings of hosts and tests find controls by these, so a
/// number once given is never given again. Numbers from 10000 on are this program's own.
enum class Ctrl : int {
  None = -1,

  // Buttons that many dialogs have.
  Ok = 1,
  Cancel = 2,
  Help = 9,

  // Property sheets.
  Apply = 12321,
  SheetExtra = 10050,

  // Main dialog.
  InputFields = 3001,
  TemplateFile = 3002,
  OpenInput = 3005,
  LoadFromFile = 3006,
  CreateNew = 3007,
  FindTemplate = 3008,
  OutputElements = 3009,
  SaveToFile = 3010,
  ApplyTemplate = 3011,
  TemplateTitle = 3013,
  RecordSheet = 3018,
  InputFile = 3019,
  CloseInput = 3021,
  InputSheet = 3026,
  OutputEntityList = 3027,
  EditParams = 3029,
  EditInput = 3051,
  Settings = 3083,
  Exit = 3086,
  TemplateActions = 3102,
  InputFileActions = 3103,
  EntityRecords = 10001,
  AuxiliaryRecords = 10002,
  RecentTemplates = 10003,
  RecentInputs = 10004,

  // Lists.
  InPlaceCombo = 3022,
  InPlaceText = 10010,

  // Input file page.
  InputRows = 3003,
  ShowEntityBlocks = 3071,
  ShowAuxiliaryBlocks = 3072,
  ShowUnmatched = 3073,
  ShowIgnored = 3074,
  ShowNewlines = 3077,
  ShowDataFieldInfo = 3119,
  FilterText = 10020,
  FilterIsExpression = 10021,
  NextUnmatched = 10022,
  PreviousUnmatched = 10023,
  ColourLegend = 10024,
  FilterStatus = 10025,

  // Results summary page.
  ResultViewer = 3048,
  TotalLines = 3055,
  ParseableLines = 3056,
  MatchedLines = 3057,
  UnmatchedLines = 3058,
  TotalBlocks = 3059,
  EntityBlocks = 3060,
  AuxiliaryBlocks = 3061,

  // Viewer of entity lists.
  ViewerText = 10040,
  ViewerRows = 10041,
  FindWhat = 10042,
  FindNext = 10043,
  FindPrevious = 10044,
  FindClose = 10045,
  FindOutcome = 10046,

  // Window of the manual.
  ManualText = 10060,
  ManualBack = 10061,
  ManualForward = 10062,
  ManualContents = 10063,
  ManualFind = 10064,

  // Template parameters dialog.
  ParamUnits = 3030,
  ParamIgnoreBefore = 3032,
  ParamIgnoreAfter = 3034,
  ParamTitle = 3035,
  ParamFromTop = 3043,
  ParamFromBottom = 3044,
  ParamScale = 3062,

  // Settings dialog.
  TabStop = 3045,
  SearchPath = 3065,
  BrowseSearchPath = 3066,
  TriggerRecordAdd = 3090,
  TriggerRecordDelete = 3091,
  TriggerRecordModify = 3092,
  TriggerInputFieldAdd = 3093,
  TriggerInputFieldDelete = 3094,
  TriggerInputFieldModify = 3095,
  TriggerOutputElementAdd = 3096,
  TriggerOutputElementDelete = 3097,
  TriggerOutputElementModify = 3098,
  TriggerParameters = 3101,
  SelectAllTriggers = 3120,
  UnselectAllTriggers = 3121,

  // Error log.
  ErrorLines = 3068,

  // Progress window.
  ProgressText = 10100,
  ProgressBar = 10101,
};

/// Every dialog and page by its resource number; 0 for those that have none.
enum class DialogId : int {
  None = 0,
  Main = 702,
  ResultsPage = 743,
  InputFilePage = 744,
  TemplateParams = 745,
  ErrorLog = 755,
  AppSettings = 758,
};

}  // namespace bomparser
