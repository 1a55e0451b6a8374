#pragma once

namespace bomparser {

/// Every menu command by number. Numbers from 10000 to 19999 are this program's own.
enum class Cmd : int {
  None = -1,
  AppendNew = 45000,
  DeleteSelected = 45001,
  ChangeType = 45002,
  CopyToThis = 45003,
  InsertNewAbove = 45004,
  CreateRecordFromSelected = 45005,
  EditFile = 45006,
  CopyToAllOthers = 45007,
  TestSelected = 45008,
  CreateRequiredOutputSet = 45009,

  CopyText = 10030,
  MoveUp = 10031,
  MoveDown = 10032,
  NextUnmatched = 10033,
  PreviousUnmatched = 10034,
};

/// The context menus by their resource numbers.
enum class MenuId : int {
  InputRows = 539,
  TemplateElements = 542,
};

}  // namespace bomparser
