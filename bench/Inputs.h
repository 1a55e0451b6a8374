#pragma once

#include <cstddef>
#include <string>
#include <vector>

// Input files for the benchmarks and for the table, and the templates that read them. The same
// arguments give the same bytes on every system and with every compiler.
//
// Sizes are in bytes: a text ends with the first line that reaches its size. About one line in
// fifty is one that no record of its template takes.
namespace bomparser::bench {

/// A placement list as a mount program prints it: pages of columns that are set apart by blanks,
/// each page with a heading; the units once, on top.
std::string MakePlacementList(std::size_t size);
/// Auxiliary records for everything around the placements, among them one Single Match record of
/// the units; one Part record of 18 input fields.
std::string PlacementTemplate();

/// A bill of materials with semicolons between its columns. One column lists all designators of
/// the item. A line that is no item fails before the first scan of the item's record, so that
/// programs which read line by line find the same items.
std::string MakeBillOfMaterials(std::size_t size);
/// The designators through a repeated sub-record, five columns through SCAN_TO_NEXT.
std::string BillOfMaterialsTemplate();

/// For a placement list: at every placement a scan for a literal begins that the file does not
/// hold. Takes no line but comments and blank ones.
std::string HostileTemplate();

/// One line: words up to the size, and the line end.
std::string MakeLongLine(std::size_t size);
/// Line ends, one a byte.
std::string MakeEmptyLines(std::size_t count);

/// A placement list with an end mark as its last line.
std::string MakeMarkedList(std::size_t size);
/// Its first record scans from the first line to the end mark: one block takes the whole file.
std::string SwallowTemplate();

/// So many lines of one word each, then the line "=end".
std::string MakeWordLines(std::size_t count);
/// A repeated sub-record takes the words, one line each; the end line follows: one block of them
/// all.
std::string RepetitionTemplate();
/// What follows the words never comes, at whichever line the record is tried.
std::string EndlessRepetitionTemplate();

/// A template of so many records, entity and auxiliary ones in turn.
std::string TemplateOfRecords(std::size_t count);

/// Templates to choose from for a placement list; the one at ChoiceOf(count) is the list's own, all
/// others take less of it.
std::vector<std::string> TemplatesToChooseFrom(std::size_t count);
constexpr std::size_t ChoiceOf(std::size_t count) { return count * 3 / 5; }

}  // namespace bomparser::bench
