#include "ui/controls/EntityListModel.h"

#include "tnbase/CharClass.h"
#include "tnbase/TextEncoding.h"
#include "ui/controls/EntityListPieces.h"
#include "ui/controls/EntityListText.h"

#include <algorithm>
#include <string>
#include <utility>

namespace bomparser {
namespace {

constexpr auto kNowhere = std::string_view::npos;

bool SameNoCase(char a, char b) { return ToLower(a) == ToLower(b); }

bool IsNonAscii(char byte) { return static_cast<unsigned char>(byte) >= 0x80U; }

/// Where the key is next, or without one the next byte that is not ASCII.
std::size_t FindFirst(std::string_view bytes, std::string_view key) {
  const auto found =
      key.empty() ? std::find_if(bytes.begin(), bytes.end(), IsNonAscii)
                  : std::search(bytes.begin(), bytes.end(), key.begin(), key.end(), SameNoCase);
  return found == bytes.end() ? kNowhere : static_cast<std::size_t>(found - bytes.begin());
}

/// The same from the end on: where the last one starts.
std::size_t FindLast(std::string_view bytes, std::string_view key) {
  const auto found =
      key.empty() ? std::find_if(bytes.rbegin(), bytes.rend(), IsNonAscii)
                  : std::search(bytes.rbegin(), bytes.rend(), key.rbegin(), key.rend(), SameNoCase);
  if (found == bytes.rend()) return kNowhere;
  return static_cast<std::size_t>(bytes.rend() - found) - std::max<std::size_t>(key.size(), 1);
}

/// The longest part of a text that is the same bytes in every encoding.
std::string SearchKey(const QString& text) {
  constexpr char16_t kFirstNonAscii = 0x80;
  std::string longest;
  std::string run;
  for (const QChar character : text) {
    if (character < kFirstNonAscii) {
      run += character.toLatin1();
    } else {
      run.clear();
    }
    if (run.size() > longest.size()) longest = run;
  }
  return longest;
}

bool ContinuesCharacter(char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U; }

/// How many columns of a fixed pitch the bytes take as a row: a control code is shown by its
/// number, and letters of three bytes and more are mostly twice as wide.
std::size_t ShownSize(std::string_view bytes) {
  constexpr std::size_t kOfCode = 4;
  constexpr unsigned kFirstOfThree = 0xE0;
  const bool oneByteEach = !IsUtf8(bytes);
  std::size_t size = 0;
  for (const char byte : bytes) {
    const auto value = static_cast<unsigned char>(byte);
    if (value < ' ' || value == 0x7F) {
      size += kOfCode;
    } else if (oneByteEach || !IsNonAscii(byte)) {
      ++size;
    } else if (!ContinuesCharacter(byte)) {
      size += value >= kFirstOfThree ? 2 : 1;
    }
  }
  return size;
}

}  // namespace

EntityListModel::EntityListModel(QObject* parent) : QAbstractListModel(parent) {}

void EntityListModel::SetFile(ViewedFile file) {
  Clear();
  beginResetModel();
  try {
    m_file = std::move(file);
    CutIntoRows();
  } catch (...) {
    Forget();
    endResetModel();
    throw;
  }
  endResetModel();
}

void EntityListModel::Clear() {
  beginResetModel();
  Forget();
  endResetModel();
}

void EntityListModel::Forget() {
  m_file = ViewedFile();
  m_framed = false;
  m_starts = {};
  m_longest = -1;
  m_longestSize = 0;
}

int EntityListModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(m_starts.size());
}

QVariant EntityListModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid() || role != Qt::DisplayRole) return {};
  return GetRowText(index.row());
}

QString EntityListModel::GetRowText(int row) const {
  std::string_view bytes = RowBytes(row);
  // Of a text in lines the row itself is what shows the line's end.
  if (!m_framed && bytes.ends_with('\n')) bytes.remove_suffix(1);
  return OnOneLine(bytes);
}

std::string_view EntityListModel::RowBytes(int row) const {
  const std::string_view bytes = m_file.GetBytes();
  const auto place = static_cast<std::size_t>(row);
  const std::size_t end =
      place + 1 < m_starts.size() ? static_cast<std::size_t>(m_starts[place + 1]) : bytes.size();
  const auto start = static_cast<std::size_t>(m_starts[place]);
  return bytes.substr(start, end - start);
}

// ---------------------------------------------------------------------------------------- search

int EntityListModel::RowAt(std::size_t position) const {
  return static_cast<int>(std::ranges::upper_bound(m_starts, position) - m_starts.begin()) - 1;
}

bool EntityListModel::HasText(int row, const QString& text) const {
  return GetRowText(row).contains(text, Qt::CaseInsensitive);
}

int EntityListModel::Find(int row, const QString& text, SearchDirection direction) const {
  const int rows = rowCount();
  if (rows == 0 || text.isEmpty()) return -1;
  row = std::clamp(row, -1, rows - 1);
  if (direction == SearchDirection::Down) {
    const int found = FindDown(row + 1, rows, text);
    return found >= 0 ? found : FindDown(0, row + 1, text);
  }
  const int found = FindUp(0, std::max(row, 0), text);
  return found >= 0 ? found : FindUp(std::max(row, 0), rows, text);
}

int EntityListModel::FindDown(int first, int last, const QString& text) const {
  const std::string_view bytes = m_file.GetBytes();
  const std::string key = SearchKey(text);
  for (int row = first; row < last; ++row) {
    const auto from = static_cast<std::size_t>(m_starts[static_cast<std::size_t>(row)]);
    const std::size_t found = FindFirst(bytes.substr(from), key);
    if (found == kNowhere) return -1;
    row = RowAt(from + found);
    if (row < last && HasText(row, text)) return row;
  }
  return -1;
}

int EntityListModel::FindUp(int first, int last, const QString& text) const {
  const std::string_view bytes = m_file.GetBytes();
  const std::string key = SearchKey(text);
  for (int row = last - 1; row >= first; --row) {
    const std::string_view own = RowBytes(row);
    const std::string_view above =
        bytes.substr(0, static_cast<std::size_t>(own.data() + own.size() - bytes.data()));
    const std::size_t found = FindLast(above, key);
    if (found == kNowhere) return -1;
    row = RowAt(found);
    if (row >= first && HasText(row, text)) return row;
  }
  return -1;
}

// ------------------------------------------------------------------------------------------ rows

void EntityListModel::CutIntoRows() {
  using entity_list::kClosing;
  using entity_list::kOpening;
  const std::string_view bytes = m_file.GetBytes();
  m_framed = entity_list::IsFramed(bytes);
  const std::string_view separator = m_framed ? "</ENTITY><ENTITY>" : "\n";
  const std::size_t kept = m_framed ? entity_list::kCloseEntity.size() : separator.size();

  const std::size_t last = m_framed ? bytes.size() - kClosing.size() : bytes.size();
  std::size_t start = m_framed ? kOpening.size() : 0;
  AddRows(0, start);
  while (start < last) {
    const std::size_t found = bytes.find(separator, start);
    const std::size_t end = found == kNowhere ? last : found + kept;
    AddRows(start, end);
    start = end;
  }
  AddRows(last, bytes.size());
}

void EntityListModel::AddRows(std::size_t start, std::size_t end) {
  while (start < end) {
    const std::size_t next = EndOfRow(start, end);
    const std::size_t size = ShownSize(m_file.GetBytes().substr(start, next - start));
    if (size > m_longestSize) {
      m_longestSize = size;
      m_longest = static_cast<int>(m_starts.size());
    }
    m_starts.push_back(start);
    start = next;
  }
}

/// A row that has to end before its entity does ends between two characters, if these are UTF-8.
std::size_t EntityListModel::EndOfRow(std::size_t start, std::size_t end) const {
  constexpr std::size_t kLongestCharacter = 4;
  if (end - start <= kLongestRow) return end;
  const std::string_view bytes = m_file.GetBytes();
  const std::size_t cut = start + kLongestRow;
  for (std::size_t place = cut; place > cut - kLongestCharacter; --place) {
    if (!ContinuesCharacter(bytes[place])) return place;
  }
  return cut;
}

}  // namespace bomparser
